<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:e="http://exslt.org/common">
  <xsl:output method="text"/>
  <xsl:template match="/">
    <xsl:variable name="v"><a>1</a><a>2</a></xsl:variable>
    <xsl:value-of select="concat(e:object-type(1), ' ', e:object-type(''), ' ', e:object-type(/), ' ', e:object-type(true()))"/>
  </xsl:template>
</xsl:stylesheet>
