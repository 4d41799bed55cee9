<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:one="urn:n" xmlns:two="urn:n">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:value-of select="count(//one:a | //two:a)"/>
  </xsl:template>
</xsl:stylesheet>
