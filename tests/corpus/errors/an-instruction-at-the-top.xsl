<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:value-of select="1"/>
  <xsl:template match="/">x</xsl:template>
</xsl:stylesheet>
