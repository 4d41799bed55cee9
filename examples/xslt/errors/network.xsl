<?xml version="1.0" encoding="UTF-8"?>
<!-- Wrong on purpose: a document on the network. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="urn:orders">

  <xsl:template match="/">
    <xsl:copy-of select="document('http://vexa.example/rates.xml')"/>
  </xsl:template>

</xsl:stylesheet>
