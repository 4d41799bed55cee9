<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text" cdata-section-elements="a"/>
  <xsl:template match="/">
    <a>&amp;</a>
  </xsl:template>
</xsl:stylesheet>
