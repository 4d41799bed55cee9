<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:decimal-format name="eu" decimal-separator="," grouping-separator="."/>
  <xsl:template match="/">
    <xsl:value-of select="format-number(1234.5, '#.##0,00', 'eu')"/>
  </xsl:template>
</xsl:stylesheet>
