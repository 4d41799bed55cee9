<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:for-each select="//price"><xsl:value-of select="position()"/>of<xsl:value-of select="last()"/><xsl:text> </xsl:text></xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
