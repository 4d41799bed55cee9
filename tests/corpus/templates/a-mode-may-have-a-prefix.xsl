<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:one="urn:m" xmlns:two="urn:m">
  <xsl:output method="text"/>
  <xsl:template match="/"><xsl:apply-templates select="//title" mode="one:m"/></xsl:template>
  <xsl:template match="title" mode="two:m">same namespace;</xsl:template>
  <xsl:template match="title" mode="m">never</xsl:template>
</xsl:stylesheet>
