<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/"><xsl:call-template name="t"/><xsl:apply-templates select="//title[1]"/></xsl:template>
  <xsl:template match="title" name="t"><xsl:value-of select="name()"/>.</xsl:template>
</xsl:stylesheet>
