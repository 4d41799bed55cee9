<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:x="http://www.w3.org/XML/1998/namespace">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:value-of select="//@x:lang"/>
  </xsl:template>
</xsl:stylesheet>
