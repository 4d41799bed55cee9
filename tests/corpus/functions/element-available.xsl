<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:value-of select="concat(element-available('xsl:choose'), element-available('xsl:nonsense'))"/>
  </xsl:template>
</xsl:stylesheet>
