<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="xml" omit-xml-declaration="yes" indent="no" encoding="US-ASCII"/>
  <xsl:template match="/">
    <a b="é"/>
  </xsl:template>
</xsl:stylesheet>
