<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:import href="parts/title.xsl"/>
  <xsl:output method="text"/>
  <xsl:template match="title">-<xsl:apply-imports/></xsl:template>
  <xsl:template match="/">
    <xsl:apply-templates select="//title"/>
  </xsl:template>
</xsl:stylesheet>
