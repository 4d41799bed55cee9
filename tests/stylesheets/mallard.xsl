<?xml version="1.0" encoding="UTF-8"?>
<!-- Writes all pages of a cache, as yelp-build does. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:cache="http://projectmallard.org/cache/1.0/" xmlns:mal="http://projectmallard.org/1.0/">

  <xsl:import href="/usr/share/yelp-xsl/xslt/mallard/html/mal2xhtml.xsl"/>

  <xsl:param name="mal.cache" select="/cache:cache"/>

  <xsl:template match="/">
    <xsl:for-each select="cache:cache/mal:page">
      <xsl:for-each select="document(@cache:href)">
        <xsl:call-template name="html.output">
          <xsl:with-param name="node" select="mal:page"/>
        </xsl:call-template>
      </xsl:for-each>
    </xsl:for-each>
  </xsl:template>

</xsl:stylesheet>
