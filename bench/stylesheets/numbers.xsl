<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:template match="/rows">
    <numbers>
      <xsl:for-each select="row">
        <xsl:value-of select="format-number(position(), '#,##0.00')"/>
        <xsl:value-of select="format-number(position() * 1.5, '#,##0.00')"/>
        <xsl:value-of select="format-number(position() div 100, '0%')"/>
      </xsl:for-each>
    </numbers>
  </xsl:template>
</xsl:stylesheet>
