<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:import href="parts/modes.xsl"/>
  <xsl:import href="parts/title.xsl"/>
  <xsl:output method="text"/>
  <xsl:template match="title" mode="m">-<xsl:apply-imports/></xsl:template>
  <xsl:template match="/">
    <xsl:apply-templates select="(//title)[1]" mode="m"/>
  </xsl:template>
</xsl:stylesheet>
