<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:choose>
      <xsl:when test="1 = 2">a</xsl:when>
      <xsl:when test="1 = 1">b</xsl:when>
      <xsl:when test="2 = 2">c</xsl:when>
      <xsl:otherwise>d</xsl:otherwise>
    </xsl:choose>
  </xsl:template>
</xsl:stylesheet>
