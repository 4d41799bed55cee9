<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:apply-templates><xsl:with-param name="end" select="'!'"/></xsl:apply-templates>
  </xsl:template>
  <xsl:template match="title"><xsl:param name="end" select="'?'"/><xsl:value-of select="concat(., $end)"/></xsl:template>
  <xsl:template match="text()"/>
</xsl:stylesheet>
