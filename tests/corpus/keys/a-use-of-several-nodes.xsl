<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:key name="k" match="r" use="w"/>
  <xsl:template match="/">
    <xsl:value-of select="concat(name(key('k', 'a')), name(key('k', 'b')))"/>
  </xsl:template>
</xsl:stylesheet>
