<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/"><xsl:apply-templates select="@*|node()"/></xsl:template>
  <xsl:template match="node()">n</xsl:template>
</xsl:stylesheet>
