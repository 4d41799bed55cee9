<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:apply-templates select="//title"><xsl:with-param name="end" select="'!'"/></xsl:apply-templates>
  </xsl:template>
  <xsl:template match="title"><xsl:param name="end"/><xsl:value-of select="concat(., $end)"/></xsl:template>
</xsl:stylesheet>
