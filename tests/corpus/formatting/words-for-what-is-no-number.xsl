<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:decimal-format name="w" NaN="none" infinity="much"/>
  <xsl:template match="/">
    <xsl:value-of select="concat(format-number(number('x'), '0', 'w'), format-number(1 div 0, '0', 'w'))"/>
  </xsl:template>
</xsl:stylesheet>
