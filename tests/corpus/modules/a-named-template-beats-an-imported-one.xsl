<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:import href="parts/greeting.xsl"/>
  <xsl:output method="text"/>
  <xsl:template name="greet">own</xsl:template>
  <xsl:template match="/">
    <xsl:call-template name="greet"/>
  </xsl:template>
</xsl:stylesheet>
