<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:variable name="s" select="//shelf"/>
    <xsl:for-each select="$s/book[1]"><xsl:value-of select="@id"/></xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
