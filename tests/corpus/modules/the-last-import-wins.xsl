<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:import href="parts/title.xsl"/>
  <xsl:import href="parts/title-again.xsl"/>
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:apply-templates select="//title"/>
  </xsl:template>
</xsl:stylesheet>
