<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" indent="no"/>
  <xsl:template match="/">
    <div><p/><td/></div>
  </xsl:template>
</xsl:stylesheet>
