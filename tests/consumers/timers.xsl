<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:vexa="http://vexa.example/xslt/wol" exclude-result-prefixes="vexa">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:template match="/">
    <xsl:variable name="stopped" select="vexa:TimerCreate()"/>
    <xsl:variable name="running" select="vexa:TimerCreate()"/>
    <xsl:variable name="start" select="vexa:TimerStart($stopped)"/>
    <xsl:variable name="last" select="vexa:TimerStop($stopped)"/>
    <xsl:variable name="started" select="vexa:TimerStart($running)"/>
    <timer>
      <xsl:value-of select="concat(a, ': ', $stopped, ' ', $running, ' ',
                                   vexa:TimerTotal($stopped) >= 0)"/>
    </timer>
  </xsl:template>
</xsl:stylesheet>
