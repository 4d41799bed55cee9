<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:choose>
      <xsl:when test="true()">
        <xsl:choose><xsl:when test="false()">a</xsl:when><xsl:otherwise>b</xsl:otherwise></xsl:choose>
      </xsl:when>
      <xsl:otherwise>c</xsl:otherwise>
    </xsl:choose>
  </xsl:template>
</xsl:stylesheet>
