<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:n="urn:n">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:for-each select="//n:a/namespace::*"><xsl:sort select="name()"/><xsl:value-of select="concat(name(), '=', substring(., 1, 5), ' ')"/></xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
