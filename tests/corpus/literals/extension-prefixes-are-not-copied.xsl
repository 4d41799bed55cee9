<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:e="urn:e" extension-element-prefixes="e">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:template match="/">
    <a/>
  </xsl:template>
</xsl:stylesheet>
