<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:for-each select="//book">
      <xsl:variable name="t" select="title"/>
      <xsl:value-of select="string-length($t)"/>
    </xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
