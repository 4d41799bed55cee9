<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="title" priority="-1">never</xsl:template>
  <xsl:template match="*" priority="-0.75"><xsl:apply-templates/></xsl:template>
  <xsl:template match="text()" priority="3"/>
  <xsl:template match="node()" priority="2">n<xsl:apply-templates/></xsl:template>
</xsl:stylesheet>
