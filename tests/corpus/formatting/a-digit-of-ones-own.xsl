<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:decimal-format name="d" digit="!"/>
  <xsl:template match="/">
    <xsl:value-of select="format-number(5, '!!0.0', 'd')"/>
  </xsl:template>
</xsl:stylesheet>
