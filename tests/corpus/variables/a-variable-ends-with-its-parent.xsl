<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:variable name="v" select="'outer'"/>
  <xsl:template match="/">
    <xsl:if test="true()"><xsl:variable name="v" select="'inner'"/><xsl:value-of select="$v"/></xsl:if>
    <xsl:value-of select="$v"/>
  </xsl:template>
</xsl:stylesheet>
