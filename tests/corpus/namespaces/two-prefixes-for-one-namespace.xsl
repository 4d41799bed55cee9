<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:template match="/">
    <p:a xmlns:p="urn:1"><q:b xmlns:q="urn:1"/></p:a>
  </xsl:template>
</xsl:stylesheet>
