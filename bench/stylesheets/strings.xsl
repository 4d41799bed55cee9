<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:variable name="small" select="'abcdefghijklmnopqrstuvwxyz'"/>
  <xsl:variable name="large" select="'ABCDEFGHIJKLMNOPQRSTUVWXYZ'"/>
  <xsl:template match="/rows">
    <words><xsl:apply-templates select="row"/></words>
  </xsl:template>
  <xsl:template match="row">
    <row length="{string-length(note)}" found="{contains(note, 'storm')}">
      <xsl:call-template name="reverse">
        <xsl:with-param name="text" select="translate(normalize-space(note), $small, $large)"/>
      </xsl:call-template>
    </row>
  </xsl:template>
  <xsl:template name="reverse">
    <xsl:param name="text"/>
    <xsl:variable name="rest" select="substring-after($text, ' ')"/>
    <xsl:if test="$rest != ''">
      <xsl:call-template name="reverse">
        <xsl:with-param name="text" select="$rest"/>
      </xsl:call-template>
      <xsl:text> </xsl:text>
    </xsl:if>
    <xsl:value-of select="substring-before(concat($text, ' '), ' ')"/>
  </xsl:template>
</xsl:stylesheet>
