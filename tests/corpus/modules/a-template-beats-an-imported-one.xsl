<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:p="urn:p">
  <xsl:import href="parts/title.xsl"/>
  <xsl:output method="text"/>
  <xsl:template match="title">own;</xsl:template>
  <xsl:template match="price"/>
  <xsl:template match="p:map"/>
</xsl:stylesheet>
