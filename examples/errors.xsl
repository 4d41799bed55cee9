<?xml version="1.0" encoding="UTF-8"?>
<!-- Calls the function of errors.cpp with the address in the document. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:vexa="http://vexa.example/xslt/wol" exclude-result-prefixes="vexa">
  <xsl:template match="/">
    <host><xsl:value-of select="vexa:HostOf(address)"/></host>
  </xsl:template>
</xsl:stylesheet>
