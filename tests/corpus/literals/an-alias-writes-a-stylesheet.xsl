<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:out="urn:alias">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:namespace-alias stylesheet-prefix="out" result-prefix="xsl"/>
  <xsl:template match="/">
    <out:stylesheet version="1.0"/>
  </xsl:template>
</xsl:stylesheet>
