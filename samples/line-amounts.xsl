<?xml version="1.0" encoding="UTF-8"?>
<!-- Adds its amount to each line of an order book, so that a later stylesheet can add the amounts up:
     the function sum() of XPath 1.0 adds values in the document, not computed values. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="http://vexa.example/orders">

  <xsl:template match="@* | node()">
    <xsl:copy>
      <xsl:apply-templates select="@* | node()"/>
    </xsl:copy>
  </xsl:template>

  <xsl:template match="o:line">
    <xsl:copy>
      <xsl:attribute name="amount">
        <xsl:value-of select="format-number(@quantity * @price, '0.00')"/>
      </xsl:attribute>
      <xsl:apply-templates select="@* | node()"/>
    </xsl:copy>
  </xsl:template>

</xsl:stylesheet>
