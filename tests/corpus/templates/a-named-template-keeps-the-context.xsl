<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="title"><xsl:call-template name="show"/></xsl:template>
  <xsl:template match="text()"/>
  <xsl:template name="show"><xsl:value-of select="position()"/><xsl:value-of select="."/>;</xsl:template>
</xsl:stylesheet>
