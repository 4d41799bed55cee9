<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:n="urn:n">
  <xsl:output method="html" indent="no"/>
  <xsl:template match="/">
    <p><n:br/></p>
  </xsl:template>
</xsl:stylesheet>
