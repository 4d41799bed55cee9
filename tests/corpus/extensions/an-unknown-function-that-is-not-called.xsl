<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:e="urn:e">
  <xsl:output method="text"/>
  <xsl:template match="/"><xsl:if test="function-available('e:nonsense')"><xsl:value-of select="e:nonsense()"/></xsl:if>done</xsl:template>
</xsl:stylesheet>
