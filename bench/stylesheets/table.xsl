<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:template match="/rows">
    <table>
      <xsl:for-each select="row">
        <tr><td><xsl:value-of select="name"/></td><td><xsl:value-of select="amount"/></td></tr>
      </xsl:for-each>
    </table>
  </xsl:template>
</xsl:stylesheet>
