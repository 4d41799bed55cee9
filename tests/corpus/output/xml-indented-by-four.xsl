<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:x="http://xml.apache.org/xalan" exclude-result-prefixes="x">
  <xsl:output omit-xml-declaration="yes" indent="yes" x:indent-amount="4"/>
  <xsl:template match="/">
    <a><b/></a>
  </xsl:template>
</xsl:stylesheet>
