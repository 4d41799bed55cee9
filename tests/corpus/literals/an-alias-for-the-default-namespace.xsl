<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:o="urn:o" xmlns="urn:d">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:namespace-alias stylesheet-prefix="o" result-prefix="#default"/>
  <xsl:template match="/">
    <o:a/>
  </xsl:template>
</xsl:stylesheet>
