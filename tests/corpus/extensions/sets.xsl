<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:s="http://exslt.org/sets">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:value-of select="count(s:difference(//book, //book[1]))"/>
  </xsl:template>
</xsl:stylesheet>
