<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:apply-templates mode="short"/>
  </xsl:template>
  <xsl:template match="title" mode="short">[<xsl:value-of select="."/>]</xsl:template>
  <xsl:template match="text()" mode="short"/>
  <xsl:template match="text()">never</xsl:template>
</xsl:stylesheet>
