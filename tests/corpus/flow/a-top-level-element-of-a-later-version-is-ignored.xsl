<xsl:stylesheet version="2.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text"/>
  <xsl:import-schema namespace="urn:x"/>
  <xsl:template match="/">done</xsl:template>
</xsl:stylesheet>
