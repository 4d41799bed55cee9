<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output cdata-section-elements="b"/>
  <xsl:output cdata-section-elements="c"/>
  <xsl:template match="/">
    <a><b>&amp;</b><c>&amp;</c></a>
  </xsl:template>
</xsl:stylesheet>
