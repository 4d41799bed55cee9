<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:one="urn:k" xmlns:two="urn:k">
  <xsl:output method="text"/>
  <xsl:key name="one:k" match="p" use="@k"/>
  <xsl:template match="/">
    <xsl:value-of select="count(key('two:k', 'a'))"/>
  </xsl:template>
</xsl:stylesheet>
