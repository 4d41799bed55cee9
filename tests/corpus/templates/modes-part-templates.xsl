<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:apply-templates select="//title" mode="a"/>
    <xsl:apply-templates select="//title" mode="b"/>
  </xsl:template>
  <xsl:template match="title" mode="a">a</xsl:template>
  <xsl:template match="title" mode="b">b</xsl:template>
  <xsl:template match="title">never</xsl:template>
</xsl:stylesheet>
