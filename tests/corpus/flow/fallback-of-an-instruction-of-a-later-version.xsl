<xsl:stylesheet version="1.7" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:later><xsl:fallback>instead</xsl:fallback></xsl:later>
  </xsl:template>
</xsl:stylesheet>
