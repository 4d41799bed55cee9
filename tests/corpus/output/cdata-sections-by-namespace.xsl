<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:n="urn:n">
  <xsl:output omit-xml-declaration="yes" cdata-section-elements="n:b"/>
  <xsl:template match="/">
    <a><b>&amp;</b><n:b>&amp;</n:b></a>
  </xsl:template>
</xsl:stylesheet>
