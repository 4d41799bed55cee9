<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:import href="parts/greeting.xsl"/>
  <xsl:output method="text"/>
  <xsl:template match="title">-<xsl:apply-imports/></xsl:template>
  <xsl:template match="/">
    <xsl:apply-templates select="(//title)[1]"/>
  </xsl:template>
</xsl:stylesheet>
