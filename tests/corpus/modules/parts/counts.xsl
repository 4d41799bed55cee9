<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:template match="title"><xsl:param name="n" select="'none'"/><xsl:value-of select="$n"/>;</xsl:template>
</xsl:stylesheet>
