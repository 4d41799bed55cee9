<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:variable name="v"><a>x</a><b>y</b></xsl:variable>
    <xsl:value-of select="$v"/>
  </xsl:template>
</xsl:stylesheet>
