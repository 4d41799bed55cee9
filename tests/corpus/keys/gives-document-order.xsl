<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:key name="k" match="p" use="@k"/>
  <xsl:template match="/">
    <xsl:for-each select="key('k', 'a')"><xsl:value-of select="@n"/></xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
