<?xml version="1.0" encoding="UTF-8"?>
<!-- Measures the time of a part of a stylesheet:

         vexa-xslt transform timers.xsl orders.xml -->
<!-- [timers] -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:vexa="http://vexa.example/xslt/wol" xmlns:o="http://vexa.example/orders">
  <xsl:output method="text" encoding="UTF-8"/>
  <xsl:template match="/">
    <xsl:variable name="timer" select="vexa:TimerCreate()"/>
    <xsl:variable name="start" select="vexa:TimerStart($timer)"/>
    <xsl:for-each select="//o:order">
      <xsl:sort select="@customer"/>
      <xsl:value-of select="concat(@customer, ' ', @id, '&#10;')"/>
    </xsl:for-each>
    <xsl:variable name="seconds" select="vexa:TimerStop($timer)"/>
    <xsl:value-of select="concat('Sorted in ', normalize-space($seconds), ' s.&#10;')"/>
    <xsl:variable name="total" select="vexa:TimerDestroy($timer)"/>
  </xsl:template>
</xsl:stylesheet>
<!-- [/timers] -->
