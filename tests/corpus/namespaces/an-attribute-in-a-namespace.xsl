<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:m="urn:n">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:value-of select="//@m:x"/>
  </xsl:template>
</xsl:stylesheet>
