<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:for-each select="//shelf">
      <xsl:value-of select="@name"/>(<xsl:for-each select="book"><xsl:value-of select="concat(position(), title)"/></xsl:for-each>)</xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
