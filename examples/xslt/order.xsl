<?xml version="1.0" encoding="UTF-8"?>
<!-- One order as a fragment of a page. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="urn:orders"
                exclude-result-prefixes="o">

  <xsl:output method="xml" encoding="UTF-8" omit-xml-declaration="yes"/>

  <xsl:param name="id"/>

  <xsl:template match="/">
    <xsl:variable name="order" select="o:orders/o:order[@id = $id]"/>
    <xsl:if test="not($order)">
      <xsl:message terminate="yes">no order <xsl:value-of select="$id"/></xsl:message>
    </xsl:if>
    <p><xsl:value-of select="concat($order/@customer, ': ', $order/@amount, ' ', $order/@currency)"/></p>
  </xsl:template>

</xsl:stylesheet>
