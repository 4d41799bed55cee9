<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:d="urn:d" xmlns:n="urn:n">
  <xsl:output method="text"/>
  <xsl:template match="a">no prefix;</xsl:template>
  <xsl:template match="d:a">d;</xsl:template>
  <xsl:template match="n:a">n;</xsl:template>
</xsl:stylesheet>
