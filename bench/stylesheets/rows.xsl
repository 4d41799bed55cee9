<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="UTF-8"/>
  <xsl:key name="of-kind" match="row" use="@kind"/>
  <xsl:template match="/rows">
    <html>
      <body>
        <table>
          <xsl:for-each select="row">
            <xsl:sort select="name"/>
            <tr>
              <td><xsl:value-of select="position()"/></td>
              <td><xsl:value-of select="name"/></td>
              <td><xsl:value-of select="format-number(amount, '#,##0.00')"/></td>
              <td><xsl:value-of select="count(key('of-kind', @kind))"/></td>
            </tr>
          </xsl:for-each>
        </table>
      </body>
    </html>
  </xsl:template>
</xsl:stylesheet>
