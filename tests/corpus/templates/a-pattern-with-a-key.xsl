<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:key name="by-year" match="book" use="@year"/>
  <xsl:template match="key('by-year', '1605')">old</xsl:template>
  <xsl:template match="text()"/>
</xsl:stylesheet>
