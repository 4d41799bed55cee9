<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes" indent="yes"/>
  <xsl:template match="/">
    <a><b><c/></b><d>x</d></a>
  </xsl:template>
</xsl:stylesheet>
