<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:template match="/">
    <a><xsl:attribute name="{concat('b', 1)}">x</xsl:attribute></a>
  </xsl:template>
</xsl:stylesheet>
