<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:variable name="v" select="1"/>
  <xsl:key name="k" match="a[$v]" use="@b"/>
  <xsl:template match="/">x</xsl:template>
</xsl:stylesheet>
