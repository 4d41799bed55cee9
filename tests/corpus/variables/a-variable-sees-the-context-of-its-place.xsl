<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:variable name="n" select="name(.)"/>
    <xsl:for-each select="//shelf[1]"><xsl:value-of select="concat('[', $n, ']', name())"/></xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
