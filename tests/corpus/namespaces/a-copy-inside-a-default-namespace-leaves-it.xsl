<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:template match="/">
    <out xmlns="urn:o"><xsl:copy-of select="//a"/></out>
  </xsl:template>
</xsl:stylesheet>
