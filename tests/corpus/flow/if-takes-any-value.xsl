<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:if test="'x'">s</xsl:if><xsl:if test="0">n</xsl:if><xsl:if test="-1">m</xsl:if>
  </xsl:template>
</xsl:stylesheet>
