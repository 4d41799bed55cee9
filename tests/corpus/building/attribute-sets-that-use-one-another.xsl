<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:attribute-set name="inner"><xsl:attribute name="a">1</xsl:attribute><xsl:attribute name="b">1</xsl:attribute></xsl:attribute-set>
  <xsl:attribute-set name="middle" use-attribute-sets="inner"><xsl:attribute name="b">2</xsl:attribute></xsl:attribute-set>
  <xsl:attribute-set name="outer" use-attribute-sets="middle inner"><xsl:attribute name="c">3</xsl:attribute></xsl:attribute-set>
  <xsl:template match="/">
    <r xsl:use-attribute-sets="outer"/>
  </xsl:template>
</xsl:stylesheet>
