<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:x="urn:x">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:template match="/">
    <x:out><xsl:copy-of select="//a"/></x:out>
  </xsl:template>
</xsl:stylesheet>
