<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:variable name="uri" select="unparsed-entity-uri('pic')"/>
    <xsl:value-of select="starts-with($uri, 'file:') and contains($uri, '/functions/pic.png')"/>
  </xsl:template>
</xsl:stylesheet>
