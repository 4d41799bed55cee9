<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:attribute-set name="s" use-attribute-sets="s"/>
  <xsl:template match="/">
    <a xsl:use-attribute-sets="s"/>
  </xsl:template>
</xsl:stylesheet>
