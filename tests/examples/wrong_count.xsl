<?xml version="1.0" encoding="UTF-8"?>
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:vexa="http://vexa.example/xslt/wol">
  <xsl:template match="/"><xsl:value-of select="vexa:Repeat('#')"/></xsl:template>
</xsl:stylesheet>
