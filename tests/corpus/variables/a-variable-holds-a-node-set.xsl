<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:variable name="books" select="//book"/>
    <xsl:value-of select="$books[2]/title"/>
  </xsl:template>
</xsl:stylesheet>
