<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:template match="/"><n><xsl:value-of select="count(//*)"/></n></xsl:template>
</xsl:stylesheet>
