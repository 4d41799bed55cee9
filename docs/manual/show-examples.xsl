<?xml version="1.0" encoding="UTF-8"?>
<!--
  The first step from the manual to its page: inserts the part of an example file at each
  <?example FILE PART?>, and stores the file's name for the caption.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">

  <!-- The document that the build has created from the files. -->
  <xsl:param name="examples"/>

  <xsl:key name="example" match="example" use="@part"/>

  <xsl:template match="@* | node()">
    <xsl:copy>
      <xsl:apply-templates select="@* | node()"/>
    </xsl:copy>
  </xsl:template>

  <xsl:template match="programlisting[processing-instruction('example')] |
                       screen[processing-instruction('example')]">
    <xsl:copy>
      <xsl:attribute name="role">
        <xsl:value-of select="substring-before(concat(processing-instruction('example'), ' '), ' ')"/>
      </xsl:attribute>
      <xsl:apply-templates select="@* | node()"/>
    </xsl:copy>
  </xsl:template>

  <xsl:template match="processing-instruction('example')">
    <xsl:variable name="part" select="normalize-space(.)"/>
    <xsl:for-each select="document($examples)">
      <xsl:if test="not(key('example', $part))">
        <xsl:message terminate="yes">The build has no example '<xsl:value-of select="$part"/>'.</xsl:message>
      </xsl:if>
      <xsl:value-of select="key('example', $part)"/>
    </xsl:for-each>
  </xsl:template>

</xsl:stylesheet>
