<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:key name="c" match="c" use="@k"/>
  <xsl:template match="/">
    <xsl:value-of select="count(document('parts/colours.xml')) + count(key('c', 'b'))"/>
  </xsl:template>
</xsl:stylesheet>
