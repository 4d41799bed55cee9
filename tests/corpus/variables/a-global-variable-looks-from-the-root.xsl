<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:variable name="c" select="count(*)"/>
  <xsl:template match="/">
    <xsl:for-each select="//book[3]"/>
    <xsl:for-each select="//title[1]"><xsl:value-of select="$c"/>;</xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
