<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes" indent="no"/>
  <xsl:template match="/">
    <a><b><c/></b></a>
  </xsl:template>
</xsl:stylesheet>
