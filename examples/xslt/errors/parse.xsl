<?xml version="1.0" encoding="UTF-8"?>
<!-- Wrong on purpose: a tag that does not match. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="urn:orders">

  <xsl:template match="/">
    <b>open</i>
  </xsl:template>

</xsl:stylesheet>
