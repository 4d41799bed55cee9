<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:vexa="http://vexa.example/xslt/wol" exclude-result-prefixes="vexa">
  <xsl:template match="greeting">
    <greeting><xsl:value-of select="vexa:Shout(.)"/></greeting>
  </xsl:template>
</xsl:stylesheet>
