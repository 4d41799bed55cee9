<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:template match="/">
    <xsl:variable name="v"><xsl:text disable-output-escaping="yes">&lt;</xsl:text></xsl:variable>
    <a><xsl:value-of select="$v"/></a>
  </xsl:template>
</xsl:stylesheet>
