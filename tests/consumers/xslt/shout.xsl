<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform" xmlns:host="urn:host"
                xmlns:vexa="http://vexa.example/xslt/wol" exclude-result-prefixes="host vexa">
  <xsl:output omit-xml-declaration="yes"/>
  <xsl:template match="/greeting">
    <greeting message="{vexa:GetLocalizedString(1, 'de')}"><xsl:value-of select="host:shout(.)"/></greeting>
  </xsl:template>
</xsl:stylesheet>
