<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <a b="1">x<!-- c --><b>y</b></a>
  </xsl:template>
</xsl:stylesheet>
