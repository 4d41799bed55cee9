<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:n="urn:n" exclude-result-prefixes="n">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:template match="/">
    <n:a/>
  </xsl:template>
</xsl:stylesheet>
