<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:p="urn:p">
  <xsl:output method="text"/>
  <xsl:template match="text()"/>
  <xsl:template match="p:*">ours</xsl:template>
  <xsl:template match="*"><xsl:apply-templates/></xsl:template>
</xsl:stylesheet>
