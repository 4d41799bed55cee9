<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:strip-space elements="b"/>
  <xsl:template match="/">
    <xsl:value-of select="string-length(//b)"/>
  </xsl:template>
</xsl:stylesheet>
