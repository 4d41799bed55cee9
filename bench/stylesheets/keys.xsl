<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:key name="by-name" match="row" use="name"/>
  <xsl:key name="by-id" match="row" use="@id"/>
  <xsl:template match="/rows">
    <found>
      <xsl:for-each select="row">
        <row id="{@id}" same="{count(key('by-name', name))}">
          <xsl:value-of select="key('by-id', @id + 1)/name"/>
        </row>
      </xsl:for-each>
    </found>
  </xsl:template>
</xsl:stylesheet>
