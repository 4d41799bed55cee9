<?xml version="1.0" encoding="UTF-8"?>
<!-- Prints the total of each order since a date, the largest first, as plain text. The source is an
     order book to which line-amounts.xsl has added the amounts. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="http://vexa.example/orders">

  <xsl:output method="text" encoding="UTF-8"/>

  <xsl:param name="since" select="'0000-00-00'"/>

  <xsl:template match="/">
    <!-- XPath 1.0 compares numbers only. -->
    <xsl:variable name="orders" select="o:orderBook/o:orders/o:order[
                                        translate(@date, '-', '') &gt;= translate($since, '-', '')]"/>
    <xsl:for-each select="$orders">
      <xsl:sort select="sum(o:line/@amount)" data-type="number" order="descending"/>
      <xsl:call-template name="row">
        <xsl:with-param name="label" select="@id"/>
        <xsl:with-param name="total" select="sum(o:line/@amount)"/>
      </xsl:call-template>
    </xsl:for-each>
    <xsl:call-template name="row">
      <xsl:with-param name="label" select="'together '"/>
      <xsl:with-param name="total" select="sum($orders/o:line/@amount)"/>
    </xsl:call-template>
  </xsl:template>

  <xsl:template name="row">
    <xsl:param name="label"/>
    <xsl:param name="total"/>
    <xsl:value-of select="concat($label, '  ', format-number($total, '0.00'), '&#10;')"/>
  </xsl:template>

</xsl:stylesheet>
