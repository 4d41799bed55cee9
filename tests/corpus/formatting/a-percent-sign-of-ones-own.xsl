<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:decimal-format name="d" percent="p"/>
  <xsl:template match="/">
    <xsl:value-of select="format-number(0.5, '0p', 'd')"/>
  </xsl:template>
</xsl:stylesheet>
