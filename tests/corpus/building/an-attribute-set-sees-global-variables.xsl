<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:variable name="v" select="'global'"/>
  <xsl:attribute-set name="s"><xsl:attribute name="b"><xsl:value-of select="$v"/></xsl:attribute></xsl:attribute-set>
  <xsl:template match="/">
    <xsl:variable name="v" select="'local'"/><a xsl:use-attribute-sets="s"/>
  </xsl:template>
</xsl:stylesheet>
