<?xml version="1.0" encoding="UTF-8"?>
<!-- Prints texts of the message catalogue:

         vexa-xslt transform languages.xsl orders.xml -p lang=de-AT -->
<!-- [languages] -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:vexa="http://vexa.example/xslt/wol" xmlns:o="http://vexa.example/orders">
  <xsl:output method="text" encoding="UTF-8"/>
  <xsl:param name="lang" select="'en'"/>
  <xsl:template match="/">
    <xsl:value-of select="concat(vexa:GetLocalizedString(0, $lang), ' ', o:orderBook/@year, ', ',
                                 vexa:GetLocalizedString(1, $lang), ': ', count(//o:order))"/>
    <xsl:text>&#10;</xsl:text>
  </xsl:template>
</xsl:stylesheet>
<!-- [/languages] -->
