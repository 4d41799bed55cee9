<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:attribute-set name="s"><xsl:attribute name="b">imported</xsl:attribute><xsl:attribute name="c">imported</xsl:attribute></xsl:attribute-set>
</xsl:stylesheet>
