<?xml version="1.0" encoding="UTF-8"?>
<!-- An order book in which each line has its amount, for a stylesheet further on that adds them up:
     XPath 1.0 sums what stands in a document, not what it would have to work out first. -->
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
