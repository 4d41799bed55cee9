<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/"><xsl:variable name="v" select="1"/><xsl:variable name="v" select="2"/>x</xsl:template>
</xsl:stylesheet>
