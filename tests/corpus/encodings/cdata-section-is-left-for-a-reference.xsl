<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes" encoding="US-ASCII" cdata-section-elements="a"/>
  <xsl:template match="/">
    <a>xéy</a>
  </xsl:template>
</xsl:stylesheet>
