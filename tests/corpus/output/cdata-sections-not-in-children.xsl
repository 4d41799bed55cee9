<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes" cdata-section-elements="b"/>
  <xsl:template match="/">
    <b>&amp;<c>&amp;</c></b>
  </xsl:template>
</xsl:stylesheet>
