<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:variable name="n" select="6"/>
    <xsl:value-of select="$n * 7"/>
  </xsl:template>
</xsl:stylesheet>
