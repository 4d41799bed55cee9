<?xml version="1.0" encoding="UTF-8"?>
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:f="http://example.org/f">
  <xsl:template match="/">
    <xsl:value-of select="f:repeat('x', 'many')"/>
  </xsl:template>
</xsl:stylesheet>
