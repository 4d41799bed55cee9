<?xml version="1.0" encoding="UTF-8"?>
<!-- The orders as plain text, one on each line. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="urn:orders">

  <xsl:output method="text" encoding="UTF-8"/>

  <xsl:param name="title" select="'Orders'"/>

  <xsl:template match="/">
    <xsl:value-of select="concat($title, '&#10;')"/>
    <xsl:for-each select="o:orders/o:order">
      <xsl:value-of select="concat(@id, ' ', @customer, ' ', @amount, ' ', @currency, '&#10;')"/>
    </xsl:for-each>
  </xsl:template>

</xsl:stylesheet>
