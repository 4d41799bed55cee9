<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:import href="parts/keys.xsl"/>
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:value-of select="key('k', 'b3')/title"/>
  </xsl:template>
</xsl:stylesheet>
