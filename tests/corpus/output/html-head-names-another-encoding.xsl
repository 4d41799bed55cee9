<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" indent="no" encoding="ISO-8859-1"/>
  <xsl:template match="/">
    <html><head/></html>
  </xsl:template>
</xsl:stylesheet>
