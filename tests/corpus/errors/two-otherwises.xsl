<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:choose><xsl:when test="1">x</xsl:when><xsl:otherwise>y</xsl:otherwise><xsl:otherwise>z</xsl:otherwise></xsl:choose>
  </xsl:template>
</xsl:stylesheet>
