<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:key name="c" match="c" use="@k"/>
  <xsl:template match="/">
    <xsl:for-each select="document('parts/colours.xml')"><xsl:value-of select="key('c', 'b')"/></xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
