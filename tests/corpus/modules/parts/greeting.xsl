<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:template name="greet">hello</xsl:template>
  <xsl:variable name="who" select="'imported'"/>
</xsl:stylesheet>
