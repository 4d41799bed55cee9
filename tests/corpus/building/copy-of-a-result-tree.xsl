<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:template match="/">
    <xsl:variable name="v"><b>x</b><c/></xsl:variable>
    <a><xsl:copy-of select="$v"/></a>
  </xsl:template>
</xsl:stylesheet>
