<?xml version="1.0" encoding="UTF-8"?>
<!-- Calls the functions of functions.cpp. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="urn:orders"
                xmlns:f="http://example.org/f">

  <xsl:output method="text" encoding="UTF-8"/>

  <!-- [calls] -->
  <xsl:template match="/">
    <xsl:variable name="orders" select="o:orders/o:order"/>
    <xsl:value-of select="concat(f:join($orders/@id, ', '), '&#10;')"/>
    <xsl:for-each select="f:distinct($orders/@customer)">
      <xsl:variable name="total" select="sum($orders[@customer = current()]/@amount)"/>
      <xsl:value-of select="concat(., ' ', f:rounded($total div 3), ' ',
                                   f:repeat('*', $total div 20), '&#10;')"/>
    </xsl:for-each>
  </xsl:template>
  <!-- [/calls] -->

</xsl:stylesheet>
