<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:value-of select="//*[local-name() = 'a' and namespace-uri() = 'urn:n']"/>
  </xsl:template>
</xsl:stylesheet>
