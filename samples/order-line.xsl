<?xml version="1.0" encoding="UTF-8"?>
<!-- An order as a line of a table, for vexa-xslt records: each order is a document of its own. -->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="http://vexa.example/orders">

  <xsl:output method="text" encoding="UTF-8"/>

  <xsl:template match="/o:order">
    <xsl:value-of select="concat(@id, ',', @date, ',', @state, ',', sum(o:line/@quantity))"/>
    <xsl:text>&#10;</xsl:text>
  </xsl:template>

</xsl:stylesheet>
