<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:template name="ask"><xsl:value-of select="document('answer.xml')"/></xsl:template>
</xsl:stylesheet>
