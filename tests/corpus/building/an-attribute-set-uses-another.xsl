<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:attribute-set name="t"><xsl:attribute name="b">inner</xsl:attribute></xsl:attribute-set>
  <xsl:attribute-set name="s" use-attribute-sets="t"><xsl:attribute name="b">set</xsl:attribute></xsl:attribute-set>
  <xsl:template match="/">
    <a xsl:use-attribute-sets="s"/>
  </xsl:template>
</xsl:stylesheet>
