<?xml version="1.0" encoding="UTF-8"?>
<!-- Wrong on purpose: a misspelled attribute. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="urn:orders">

  <xsl:template match="/">
    <xsl:value-of selekt="o:orders"/>
  </xsl:template>

</xsl:stylesheet>
