<xsl:stylesheet version="1.7" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/"><xsl:if test="false()"><xsl:later/></xsl:if>done</xsl:template>
</xsl:stylesheet>
