<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="text" omit-xml-declaration="yes" indent="no" encoding="ISO-8859-7"/>
  <xsl:template match="/">αβ</xsl:template>
</xsl:stylesheet>
