<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:key name="k" match="p | q" use="@k"/>
  <xsl:template match="/">
    <xsl:for-each select="//*[@k][generate-id() = generate-id(key('k', @k)[1])]"><xsl:value-of select="concat(@k, count(key('k', @k)), ' ')"/></xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
