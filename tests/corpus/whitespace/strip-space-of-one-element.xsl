<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:strip-space elements="a"/>
  <xsl:template match="/">
    <xsl:value-of select="count(//text())"/>
  </xsl:template>
</xsl:stylesheet>
