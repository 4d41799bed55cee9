<?xml version="1.0" encoding="UTF-8"?>
<!--
  The last step: plain HTML 5 from the output of the DocBook stylesheets. Removes their namespace
  declarations, and marks the table of contents as navigation.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">

  <xsl:output method="html" encoding="UTF-8" indent="no" doctype-system="about:legacy-compat"/>

  <xsl:template match="*">
    <xsl:element name="{local-name()}">
      <xsl:copy-of select="@*"/>
      <xsl:apply-templates/>
    </xsl:element>
  </xsl:template>

  <xsl:template match="div[@class = 'toc']">
    <nav class="toc">
      <xsl:apply-templates/>
    </nav>
  </xsl:template>

  <!-- A chapter of a part has a heading of the second level; its sections are one level below. -->
  <xsl:template match="div[@class = 'section']/div[@class = 'titlepage']//h2">
    <h3>
      <xsl:copy-of select="@*"/>
      <xsl:apply-templates/>
    </h3>
  </xsl:template>

  <!-- The engine writes a charset of its own. -->
  <xsl:template match="meta[@http-equiv = 'Content-Type']"/>

</xsl:stylesheet>
