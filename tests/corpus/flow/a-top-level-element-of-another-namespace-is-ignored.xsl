<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <my:data xmlns:my="urn:my">x</my:data>
  <xsl:template match="/">done</xsl:template>
</xsl:stylesheet>
