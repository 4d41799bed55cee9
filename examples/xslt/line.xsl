<?xml version="1.0" encoding="UTF-8"?>
<!-- An order, as a document of its own, as a line of text. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="urn:orders">

  <xsl:output method="text" encoding="UTF-8"/>

  <xsl:template match="/o:order">
    <xsl:if test="@currency = 'USD'">
      <xsl:message terminate="yes">no rate for USD</xsl:message>
    </xsl:if>
    <xsl:value-of select="concat(@id, ': ', @amount, ' ', @currency, '&#10;')"/>
  </xsl:template>

</xsl:stylesheet>
