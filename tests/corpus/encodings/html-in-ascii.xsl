<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" omit-xml-declaration="yes" indent="no" encoding="US-ASCII"/>
  <xsl:template match="/">
    <p>水</p>
  </xsl:template>
</xsl:stylesheet>
