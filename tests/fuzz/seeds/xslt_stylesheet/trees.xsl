<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:exsl="http://exslt.org/common" xmlns:x="http://xml.apache.org/xalan"
                exclude-result-prefixes="exsl x">
  <xsl:output cdata-section-elements="line" indent="yes"/>
  <xsl:param name="p"/>
  <xsl:key name="k" match="order" use="@id"/>
  <xsl:variable name="tree"><line>10</line>text<!--c--></xsl:variable>
  <xsl:attribute-set name="both" use-attribute-sets="one"><xsl:attribute name="b">2</xsl:attribute></xsl:attribute-set>
  <xsl:attribute-set name="one"><xsl:attribute name="a">1</xsl:attribute></xsl:attribute-set>
  <xsl:template match="/">
    <xsl:message>begins</xsl:message>
    <out xsl:use-attribute-sets="both" p="{$p}">
      <xsl:copy-of select="exsl:node-set($tree)/line | key('k', 'a') | document('')/*/xsl:param"/>
      <xsl:value-of select="x:evaluate('count(//line)')"/>
      <xsl:attribute name="late">lost</xsl:attribute>
      <xsl:element name="q:e" namespace="urn:q"><xsl:copy-of select="//@*"/></xsl:element>
    </out>
  </xsl:template>
</xsl:stylesheet>
