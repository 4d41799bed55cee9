<?xml version="1.0" encoding="UTF-8"?>
<!-- Prints a bar for the quantity of each order line, with the function of own_function.cpp. -->
<!-- [own function] -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:vexa="http://vexa.example/xslt/wol" xmlns:o="http://vexa.example/orders">
  <xsl:output method="text" encoding="UTF-8"/>
  <xsl:template match="/">
    <xsl:for-each select="//o:line">
      <xsl:value-of select="concat(@product, ' ', vexa:Repeat('#', @quantity), '&#10;')"/>
    </xsl:for-each>
  </xsl:template>
</xsl:stylesheet>
<!-- [/own function] -->
