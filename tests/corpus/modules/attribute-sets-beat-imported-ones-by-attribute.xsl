<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:import href="parts/sets.xsl"/>
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:attribute-set name="s"><xsl:attribute name="b">own</xsl:attribute></xsl:attribute-set>
  <xsl:template match="/">
    <a xsl:use-attribute-sets="s"/>
  </xsl:template>
</xsl:stylesheet>
