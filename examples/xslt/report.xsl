<?xml version="1.0" encoding="UTF-8"?>
<!-- The largest orders in euros. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="urn:orders"
                xmlns:f="http://example.org/f"
                exclude-result-prefixes="o f">

  <xsl:output method="html" encoding="UTF-8" indent="no"/>

  <xsl:param name="title"/>
  <xsl:param name="most" select="10"/>
  <xsl:param name="rates" select="/.."/>

  <xsl:template match="/">
    <html>
      <body>
        <h1><xsl:value-of select="f:shout($title)"/></h1>
        <ol>
          <xsl:apply-templates select="o:orders/o:order[position() &lt;= $most]"/>
        </ol>
      </body>
    </html>
  </xsl:template>

  <xsl:template match="o:order">
    <xsl:variable name="rate" select="$rates/rates/rate[@currency = current()/@currency]/@euros"/>
    <li>
      <xsl:value-of select="concat(@customer, ' ')"/>
      <xsl:choose>
        <xsl:when test="@currency = 'EUR'">
          <xsl:value-of select="@amount"/>
        </xsl:when>
        <xsl:otherwise>
          <xsl:message>converted from <xsl:value-of select="@currency"/></xsl:message>
          <xsl:value-of select="@amount * $rate"/>
        </xsl:otherwise>
      </xsl:choose>
      <xsl:text> euros</xsl:text>
    </li>
  </xsl:template>

</xsl:stylesheet>
