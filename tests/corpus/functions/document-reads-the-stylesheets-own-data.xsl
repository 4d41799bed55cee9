<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:d="urn:data">
  <xsl:output method="text"/>
  <d:month n="1">January</d:month>
  <d:month n="2">February</d:month>
  <xsl:template match="/">
    <xsl:value-of select="document('')/*/d:month[@n = 2]"/>
  </xsl:template>
</xsl:stylesheet>
