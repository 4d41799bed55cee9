<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns="urn:d">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:value-of select="//a"/>
  </xsl:template>
</xsl:stylesheet>
