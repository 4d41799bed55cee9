<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" indent="no" doctype-public="-//W3C//DTD HTML 4.01//EN"/>
  <xsl:template match="/">
    <html/>
  </xsl:template>
</xsl:stylesheet>
