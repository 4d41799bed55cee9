<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">a<xsl:if test="false()"><xsl:message terminate="yes">never</xsl:message></xsl:if>b</xsl:template>
</xsl:stylesheet>
