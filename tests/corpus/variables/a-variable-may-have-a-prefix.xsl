<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:one="urn:v" xmlns:two="urn:v">
  <xsl:output method="text"/>
  <xsl:variable name="one:v" select="'ok'"/>
  <xsl:template match="/">
    <xsl:value-of select="$two:v"/>
  </xsl:template>
</xsl:stylesheet>
