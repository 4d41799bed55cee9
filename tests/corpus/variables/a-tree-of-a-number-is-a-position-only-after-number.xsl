<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:variable name="two">2</xsl:variable>
    <xsl:value-of select="count(//shelf[1]/book[$two])"/>
    <xsl:value-of select="//shelf[1]/book[number($two)]/title"/>
  </xsl:template>
</xsl:stylesheet>
