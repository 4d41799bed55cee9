<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="xml" omit-xml-declaration="yes" indent="no" encoding="Shift_JIS"/>
  <xsl:template match="/">
    <a>水</a>
  </xsl:template>
</xsl:stylesheet>
