<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:ext="urn:ext" extension-element-prefixes="ext">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <ext:do><xsl:fallback>instead</xsl:fallback></ext:do>
  </xsl:template>
</xsl:stylesheet>
