<?xml version="1.0" encoding="UTF-8"?>
<!-- Wrong on purpose: a variable that is not declared. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="urn:orders">

  <xsl:template match="/">
    <p><xsl:value-of select="$rate"/></p>
  </xsl:template>

</xsl:stylesheet>
