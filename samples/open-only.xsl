<?xml version="1.0" encoding="UTF-8"?>
<!-- Keeps only the open orders of an order book: a first step of a chain that ends with report.xsl. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="http://vexa.example/orders">

  <xsl:template match="@* | node()">
    <xsl:copy>
      <xsl:apply-templates select="@* | node()"/>
    </xsl:copy>
  </xsl:template>

  <xsl:template match="o:order[@state != 'open']"/>

</xsl:stylesheet>
