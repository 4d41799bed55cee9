<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:template match="/">
    <a xmlns="urn:d"><xsl:element name="b" namespace=""/></a>
  </xsl:template>
</xsl:stylesheet>
