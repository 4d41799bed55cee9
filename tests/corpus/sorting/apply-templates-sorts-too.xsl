<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/"><xsl:apply-templates select="//i"><xsl:sort select="."/></xsl:apply-templates></xsl:template>
  <xsl:template match="i"><xsl:value-of select="concat(., position())"/></xsl:template>
</xsl:stylesheet>
