<xsl:stylesheet version="1.1" xmlns:xsl="http://www.w3.org/1999/XSL/Transform" xmlns:o="urn:o"
                xmlns:exsl="http://exslt.org/common" xmlns:func="http://exslt.org/functions"
                xmlns:str="http://exslt.org/strings" xmlns:date="http://exslt.org/dates-and-times"
                extension-element-prefixes="exsl func" exclude-result-prefixes="str date #default">
  <xsl:namespace-alias stylesheet-prefix="o" result-prefix="#default"/>
  <xsl:namespace-alias stylesheet-prefix="#default" result-prefix="xsl"/>
  <xsl:variable name="v" select="1"/>
  <xsl:variable name="v" select="later(1)"/>
  <xsl:attribute-set name="s"><xsl:attribute name="a"><xsl:variable name="l" select="$v"/><xsl:value-of select="$l"/></xsl:attribute></xsl:attribute-set>
  <func:function name="o:f"><xsl:param name="n" select="3"/><xsl:choose><xsl:when test="$n &gt; 1"><func:result select="$n * o:f($n - 1)"/></xsl:when><xsl:otherwise><func:result>1</func:result></xsl:otherwise></xsl:choose></func:function>
  <xsl:template match="/">
    <o:out xsl:use-attribute-sets="s" n="{o:f()}">
      <xsl:variable name="v"><i/></xsl:variable><xsl:variable name="v" select="exsl:node-set($v)/i"/>
      <exsl:document href="{name($v)}.html" method="html"><p><exsl:document href="n" method="text">1</exsl:document></p></exsl:document>
      <xsl:if test="false()" unknown="1"><xsl:call-template name="none"/></xsl:if>
      <k xsl:extension-element-prefixes="o"><o:g><xsl:fallback><xsl:number/></xsl:fallback></o:g></k>
      <xsl:for-each select="str:tokenize('a b')"><xsl:value-of select="."/></xsl:for-each><xsl:apply-imports/>
      <xsl:value-of select="concat(system-property('xsl:vendor'), date:format-date('2000-02-29', 'D EEE'))"/>
    </o:out>
    <xsl:document href="d"><d/></xsl:document>
  </xsl:template>
</xsl:stylesheet>
