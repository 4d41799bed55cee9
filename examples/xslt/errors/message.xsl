<?xml version="1.0" encoding="UTF-8"?>
<!-- Wrong on purpose: it accepts no small orders. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="urn:orders">

  <xsl:template match="/">
    <xsl:message>checking <xsl:value-of select="count(o:orders/o:order)"/> orders</xsl:message>
    <xsl:for-each select="o:orders/o:order[@amount &lt; 10]">
      <xsl:message terminate="yes">order <xsl:value-of select="@id"/> is too small</xsl:message>
    </xsl:for-each>
  </xsl:template>

</xsl:stylesheet>
