<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:include href="parts/text-output.xsl"/>
  <xsl:template match="/">
    <a>x</a>
  </xsl:template>
</xsl:stylesheet>
