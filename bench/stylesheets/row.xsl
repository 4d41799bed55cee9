<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:template match="/rows/row">
    <item kind="{@kind}"><xsl:value-of select="name"/></item>
  </xsl:template>
</xsl:stylesheet>
