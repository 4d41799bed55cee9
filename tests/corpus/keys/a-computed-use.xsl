<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:key name="k" match="p" use="concat(@k, @n)"/>
  <xsl:template match="/">
    <xsl:value-of select="key('k', 'a3')/@n"/>
  </xsl:template>
</xsl:stylesheet>
