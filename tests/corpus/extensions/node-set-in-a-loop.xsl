<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:e="http://exslt.org/common">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:variable name="v"><a>1</a><a>2</a></xsl:variable>
    <xsl:for-each select="e:node-set($v)/a"><xsl:sort order="descending"/><xsl:value-of select="."/></xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
