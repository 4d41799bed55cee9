<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:template match="/">
    <a><xsl:attribute name="b">1</xsl:attribute><xsl:attribute name="b">2</xsl:attribute></a>
  </xsl:template>
</xsl:stylesheet>
