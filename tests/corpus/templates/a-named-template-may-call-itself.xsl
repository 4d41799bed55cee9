<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:call-template name="count"><xsl:with-param name="n" select="5"/></xsl:call-template>
  </xsl:template>
  <xsl:template name="count">
    <xsl:param name="n"/>
    <xsl:value-of select="$n"/>
    <xsl:if test="$n &gt; 1">
      <xsl:call-template name="count"><xsl:with-param name="n" select="$n - 1"/></xsl:call-template>
    </xsl:if>
  </xsl:template>
</xsl:stylesheet>
