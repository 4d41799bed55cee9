<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:import href="title.xsl"/>
  <xsl:template match="title">{<xsl:apply-imports/>}</xsl:template>
</xsl:stylesheet>
