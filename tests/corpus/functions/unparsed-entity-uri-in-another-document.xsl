<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:for-each select="document('parts/named.xml')">
      <xsl:value-of select="substring-after(unparsed-entity-uri('pic'), '//')"/>
    </xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
