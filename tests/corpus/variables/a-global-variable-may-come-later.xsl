<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:variable name="a" select="$b + 1"/>
  <xsl:variable name="b" select="2"/>
  <xsl:template match="/">
    <xsl:value-of select="$a"/>
  </xsl:template>
</xsl:stylesheet>
