<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:attribute-set name="s"><xsl:attribute name="b">1</xsl:attribute></xsl:attribute-set>
  <xsl:template match="/">
    <xsl:for-each select="*"><xsl:copy use-attribute-sets="s"/></xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
