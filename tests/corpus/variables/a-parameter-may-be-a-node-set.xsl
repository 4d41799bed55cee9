<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:call-template name="t"><xsl:with-param name="p" select="//book"/></xsl:call-template>
  </xsl:template>
  <xsl:template name="t"><xsl:param name="p"/><xsl:value-of select="count($p/title)"/></xsl:template>
</xsl:stylesheet>
