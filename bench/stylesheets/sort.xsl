<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:template match="/rows">
    <sorted>
      <xsl:for-each select="row">
        <xsl:sort select="@kind"/>
        <xsl:sort select="name"/>
        <xsl:sort select="amount" data-type="number" order="descending"/>
        <row id="{@id}"/>
      </xsl:for-each>
    </sorted>
  </xsl:template>
</xsl:stylesheet>
