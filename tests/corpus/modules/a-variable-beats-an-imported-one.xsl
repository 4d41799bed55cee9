<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:import href="parts/greeting.xsl"/>
  <xsl:output method="text"/>
  <xsl:variable name="who" select="'own'"/>
  <xsl:template match="/">
    <xsl:value-of select="$who"/>
  </xsl:template>
</xsl:stylesheet>
