<?xml version="1.0" encoding="UTF-8"?>
<!--
  Frame, style and charts of a report page, and the formatting of numbers and dates.

  The importing stylesheet declares $title, $currency, $lang, $text-language (the language tag of the
  fixed texts), $text-first-day (the first day of a month, in a date) and $months (elements with
  @number, @short and the name as text, and with @genitive if dates use another form of the name). It
  has templates for the document element in the modes page-header, page-body and page-footer.
-->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform">

  <!-- de for DE, de-AT and de_AT -->
  <xsl:variable name="asked-language"
                select="substring-before(concat(translate($lang, 'ABCDEFGHIJKLMNOPQRSTUVWXYZ_',
                                                'abcdefghijklmnopqrstuvwxyz-'), '-'), '-')"/>

  <!-- The language of the formats of numbers and names -->
  <xsl:variable name="language" select="$asked-language"/>

  <!-- ============ Frame ============ -->

  <xsl:template match="/">
    <html lang="{$text-language}">
      <head>
        <title><xsl:value-of select="$title"/></title>
        <meta name="viewport" content="width=device-width, initial-scale=1"/>
        <style><xsl:call-template name="style-sheet"/></style>
      </head>
      <body>
        <header class="page"><xsl:apply-templates mode="page-header"/></header>
        <main><xsl:apply-templates mode="page-body"/></main>
        <footer class="page"><xsl:apply-templates mode="page-footer"/></footer>
      </body>
    </html>
  </xsl:template>

  <xsl:attribute-set name="numeric">
    <xsl:attribute name="class">numeric</xsl:attribute>
  </xsl:attribute-set>

  <xsl:template name="tile">
    <xsl:param name="label"/>
    <xsl:param name="value"/>
    <xsl:param name="note"/>
    <xsl:param name="kind" select="'plain'"/>
    <div class="tile {$kind}">
      <p class="label"><xsl:value-of select="$label"/></p>
      <p class="figure"><xsl:value-of select="$value"/></p>
      <p class="small"><xsl:value-of select="$note"/></p>
    </div>
  </xsl:template>

  <!-- ============ Numbers ============ -->

  <xsl:decimal-format name="point" decimal-separator="." grouping-separator=","/>
  <xsl:decimal-format name="comma" decimal-separator="," grouping-separator="."/>
  <xsl:decimal-format name="space" decimal-separator="," grouping-separator="&#8239;"/>

  <xsl:variable name="number-style">
    <xsl:choose>
      <xsl:when test="contains(' en ja zh ', concat(' ', $language, ' '))">point</xsl:when>
      <xsl:when test="$language = 'fr'">space</xsl:when>
      <xsl:otherwise>comma</xsl:otherwise>
    </xsl:choose>
  </xsl:variable>

  <!-- The pattern must use the separators of the decimal format. -->
  <xsl:variable name="separators">
    <xsl:choose>
      <xsl:when test="$number-style = 'point'">,.</xsl:when>
      <xsl:when test="$number-style = 'space'">&#8239;,</xsl:when>
      <xsl:otherwise>.,</xsl:otherwise>
    </xsl:choose>
  </xsl:variable>

  <xsl:template name="number">
    <xsl:param name="value"/>
    <!-- Written with , and . in every language -->
    <xsl:param name="pattern" select="'#,##0'"/>
    <xsl:value-of select="format-number($value, translate($pattern, ',.', $separators),
                                        string($number-style))"/>
  </xsl:template>

  <xsl:variable name="currency-sign">
    <xsl:choose>
      <xsl:when test="$currency = 'EUR'">€</xsl:when>
      <xsl:when test="$currency = 'GBP'">£</xsl:when>
      <xsl:when test="$currency = 'USD'">$</xsl:when>
      <xsl:otherwise><xsl:value-of select="$currency"/></xsl:otherwise>
    </xsl:choose>
  </xsl:variable>

  <xsl:template name="money">
    <xsl:param name="cents"/>
    <xsl:variable name="amount">
      <xsl:call-template name="number">
        <xsl:with-param name="value" select="$cents div 100"/>
        <xsl:with-param name="pattern" select="'#,##0.00'"/>
      </xsl:call-template>
    </xsl:variable>
    <xsl:choose>
      <xsl:when test="$number-style != 'point'">
        <xsl:value-of select="concat($amount, '&#160;', $currency-sign)"/>
      </xsl:when>
      <xsl:when test="string-length($currency-sign) = 1">
        <xsl:value-of select="concat($currency-sign, $amount)"/>
      </xsl:when>
      <xsl:otherwise>
        <xsl:value-of select="concat($currency-sign, '&#160;', $amount)"/>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:variable name="percent-sign">
    <xsl:choose>
      <xsl:when test="$language = 'de' or $language = 'es'">&#160;%</xsl:when>
      <xsl:when test="$language = 'fr'">&#8239;%</xsl:when>
      <xsl:otherwise>%</xsl:otherwise>
    </xsl:choose>
  </xsl:variable>

  <xsl:template name="percentage">
    <xsl:param name="part"/>
    <xsl:param name="whole"/>
    <xsl:variable name="percentage">
      <xsl:call-template name="number">
        <xsl:with-param name="value">
          <xsl:call-template name="ratio">
            <xsl:with-param name="part" select="$part"/>
            <xsl:with-param name="whole" select="$whole"/>
          </xsl:call-template>
        </xsl:with-param>
        <xsl:with-param name="pattern" select="'0.0%'"/>
      </xsl:call-template>
    </xsl:variable>
    <!-- The engine drops a space before the percent sign in the pattern. -->
    <xsl:value-of select="concat(substring-before($percentage, '%'), $percent-sign)"/>
  </xsl:template>

  <!-- 0 if the whole is 0: the division would give NaN. -->
  <xsl:template name="ratio">
    <xsl:param name="part"/>
    <xsl:param name="whole"/>
    <xsl:choose>
      <xsl:when test="$whole &gt; 0"><xsl:value-of select="$part div $whole"/></xsl:when>
      <xsl:otherwise>0</xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- ============ Texts ============ -->

  <!-- Replaces {0} by a text. -->
  <xsl:template name="fill">
    <xsl:param name="pattern"/>
    <xsl:param name="with"/>
    <xsl:value-of select="concat(substring-before($pattern, '{0}'), $with,
                                 substring-after($pattern, '{0}'))"/>
  </xsl:template>

  <!-- Formats an ISO 8601 date with a pattern: {day}, {month}, {of-month} (genitive), {mon} (short)
       and {year}. -->
  <xsl:template name="date">
    <xsl:param name="date"/>
    <xsl:param name="pattern"/>
    <xsl:choose>
      <xsl:when test="contains($pattern, '{')">
        <xsl:variable name="field" select="substring-before(substring-after($pattern, '{'), '}')"/>
        <xsl:variable name="day" select="number(substring($date, 9, 2))"/>
        <xsl:variable name="month" select="$months[@number = substring($date, 6, 2)]"/>
        <xsl:value-of select="substring-before($pattern, '{')"/>
        <xsl:choose>
          <xsl:when test="$field = 'day' and $day = 1"><xsl:value-of select="$text-first-day"/></xsl:when>
          <xsl:when test="$field = 'day'"><xsl:value-of select="$day"/></xsl:when>
          <xsl:when test="$field = 'of-month' and $month/@genitive">
            <xsl:value-of select="$month/@genitive"/>
          </xsl:when>
          <xsl:when test="$field = 'month' or $field = 'of-month'"><xsl:value-of select="$month"/></xsl:when>
          <xsl:when test="$field = 'mon'"><xsl:value-of select="$month/@short"/></xsl:when>
          <xsl:when test="$field = 'year'"><xsl:value-of select="substring($date, 1, 4)"/></xsl:when>
        </xsl:choose>
        <xsl:call-template name="date">
          <xsl:with-param name="date" select="$date"/>
          <xsl:with-param name="pattern" select="substring-after($pattern, '}')"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise>
        <xsl:value-of select="$pattern"/>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- ============ Charts ============ -->

  <xsl:variable name="chart-height" select="270"/>
  <xsl:variable name="chart-floor" select="240"/>
  <xsl:variable name="chart-plot" select="212"/>
  <!-- The space for the scale at the left, in percent of the width -->
  <xsl:variable name="chart-margin" select="6"/>
  <xsl:variable name="chart-bar" select="4.8"/>

  <xsl:attribute-set name="bar">
    <xsl:attribute name="width"><xsl:value-of select="$chart-bar"/>%</xsl:attribute>
    <xsl:attribute name="rx">2</xsl:attribute>
  </xsl:attribute-set>

  <!-- The smallest of 1, 2, 5, 10, 20, 50 ... that reaches the maximum in at most five steps. -->
  <xsl:template name="scale-step">
    <xsl:param name="maximum"/>
    <xsl:param name="power" select="1"/>
    <xsl:choose>
      <xsl:when test="$maximum &lt;= 5 * $power"><xsl:value-of select="$power"/></xsl:when>
      <xsl:when test="$maximum &lt;= 10 * $power"><xsl:value-of select="2 * $power"/></xsl:when>
      <xsl:when test="$maximum &lt;= 25 * $power"><xsl:value-of select="5 * $power"/></xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="scale-step">
          <xsl:with-param name="maximum" select="$maximum"/>
          <xsl:with-param name="power" select="10 * $power"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="grid-lines">
    <xsl:param name="step"/>
    <xsl:param name="top"/>
    <!-- The number of cents in one unit of the scale -->
    <xsl:param name="unit"/>
    <xsl:param name="value" select="0"/>
    <xsl:if test="$value &lt;= $top">
      <xsl:variable name="y">
        <xsl:choose>
          <xsl:when test="$top &gt; 0">
            <xsl:value-of select="round($chart-floor - $chart-plot * $value div $top)"/>
          </xsl:when>
          <xsl:otherwise><xsl:value-of select="$chart-floor"/></xsl:otherwise>
        </xsl:choose>
      </xsl:variable>
      <line x1="{$chart-margin}%" x2="100%" y1="{$y}" y2="{$y}"/>
      <text class="scale" x="{$chart-margin - 1}%" y="{$y + 4}">
        <xsl:call-template name="number">
          <xsl:with-param name="value" select="$value div $unit"/>
          <xsl:with-param name="pattern" select="'#,##0.##'"/>
        </xsl:call-template>
      </text>
      <xsl:call-template name="grid-lines">
        <xsl:with-param name="step" select="$step"/>
        <xsl:with-param name="top" select="$top"/>
        <xsl:with-param name="unit" select="$unit"/>
        <xsl:with-param name="value" select="$value + $step"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>

  <!-- A bar with its share as text -->
  <xsl:template name="meter">
    <xsl:param name="part"/>
    <xsl:param name="whole"/>
    <div class="meter">
      <xsl:call-template name="strip">
        <xsl:with-param name="part" select="$part"/>
        <xsl:with-param name="whole" select="$whole"/>
      </xsl:call-template>
      <span>
        <xsl:call-template name="percentage">
          <xsl:with-param name="part" select="$part"/>
          <xsl:with-param name="whole" select="$whole"/>
        </xsl:call-template>
      </span>
    </div>
  </xsl:template>

  <xsl:template name="strip">
    <xsl:param name="part"/>
    <xsl:param name="whole"/>
    <xsl:param name="kind" select="'paid'"/>
    <xsl:variable name="ratio">
      <xsl:call-template name="ratio">
        <xsl:with-param name="part" select="$part"/>
        <xsl:with-param name="whole" select="$whole"/>
      </xsl:call-template>
    </xsl:variable>
    <!-- Not localised: CSS requires a decimal point. -->
    <div class="strip">
      <i class="{$kind}" style="width:{round($ratio * 1000) div 10}%"/>
    </div>
  </xsl:template>

  <xsl:attribute-set name="sparkline">
    <xsl:attribute name="class">sparkline</xsl:attribute>
    <xsl:attribute name="viewBox">-3 -3 126 30</xsl:attribute>
    <xsl:attribute name="aria-hidden">true</xsl:attribute>
  </xsl:attribute-set>

  <xsl:template name="sparkline">
    <xsl:param name="values"/>
    <xsl:variable name="maximum">
      <xsl:for-each select="$values">
        <xsl:sort data-type="number" order="descending"/>
        <xsl:if test="position() = 1"><xsl:value-of select="."/></xsl:if>
      </xsl:for-each>
    </xsl:variable>
    <xsl:variable name="points">
      <xsl:call-template name="sparkline-points">
        <xsl:with-param name="values" select="$values"/>
        <xsl:with-param name="maximum" select="$maximum"/>
        <xsl:with-param name="step" select="120 div (count($values) - 1)"/>
      </xsl:call-template>
    </xsl:variable>
    <svg xsl:use-attribute-sets="sparkline">
      <polygon points="0,24 {$points}120,24"/>
      <polyline points="{$points}"/>
    </svg>
  </xsl:template>

  <xsl:template name="sparkline-points">
    <xsl:param name="values"/>
    <xsl:param name="maximum"/>
    <xsl:param name="step"/>
    <xsl:param name="x" select="0"/>
    <xsl:if test="$values">
      <xsl:variable name="ratio">
        <xsl:call-template name="ratio">
          <xsl:with-param name="part" select="$values[1]"/>
          <xsl:with-param name="whole" select="$maximum"/>
        </xsl:call-template>
      </xsl:variable>
      <xsl:value-of select="concat(round($x * 10) div 10, ',', round(240 - 240 * $ratio) div 10, ' ')"/>
      <xsl:call-template name="sparkline-points">
        <xsl:with-param name="values" select="$values[position() &gt; 1]"/>
        <xsl:with-param name="maximum" select="$maximum"/>
        <xsl:with-param name="step" select="$step"/>
        <xsl:with-param name="x" select="$x + $step"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>

  <!-- ============ Style ============ -->

  <xsl:template name="style-sheet"><![CDATA[
:root {
  --ground: #f5f3ee; --surface: #ffffff; --ink: #1d2b2f; --faint: #5f6e72; --rule: #e4e1d8;
  --deep: #0e4f52; --teal: #1f7a78; --amber: #e0972b; --blue: #4a78b5; --grey: #a9b0b0;
  --tint: #eef5f3; --shadow: 0 1px 2px rgba(20, 40, 40, .06), 0 6px 20px rgba(20, 40, 40, .05);
}
@media (prefers-color-scheme: dark) {
  :root {
    --ground: #12191b; --surface: #1a2427; --ink: #e6ebe9; --faint: #98a7a8; --rule: #2b383b;
    --deep: #0c3f42; --teal: #45aaa5; --amber: #e5a648; --blue: #7fa6da; --grey: #67757a;
    --tint: #1f2d30; --shadow: none;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0; background: var(--ground); color: var(--ink);
  font: 15px/1.5 system-ui, "Segoe UI", "Helvetica Neue", "Noto Sans", sans-serif;
  -webkit-text-size-adjust: 100%;
}
p, ul, h1, h2 { margin: 0; padding: 0; }
ul { list-style: none; }

header.page { background: var(--deep); color: #f4f8f6; padding: 44px 24px 92px; }
header.page > *, footer.page > * { max-width: 1120px; margin-inline: auto; }
.house { letter-spacing: .06em; font-size: 14px; color: #a9d1cb; }
h1 { font-size: clamp(30px, 5vw, 46px); line-height: 1.15; font-weight: 650; letter-spacing: -.02em; }
.as-of { color: #c8dedb; margin-top: 6px; }

main { max-width: 1168px; padding: 0 24px; margin: -60px auto 0; }
footer.page { padding: 8px 24px 48px; color: var(--faint); font-size: 13px; }

.tiles { display: grid; grid-template-columns: repeat(4, 1fr); gap: 16px; margin-bottom: 20px; }
.tile {
  background: var(--surface); border-radius: 12px; padding: 18px 20px 16px; box-shadow: var(--shadow);
  border-top: 3px solid var(--teal); min-width: 0;
}
.tile.warm { border-top-color: var(--amber); }
.label { color: var(--faint); font-size: 13px; }
.figure {
  font-size: clamp(19px, 2.1vw, 25px); font-weight: 650; line-height: 1.35; letter-spacing: -.01em;
  font-variant-numeric: tabular-nums; overflow-wrap: anywhere;
}
.figure::first-letter, tr.month th::first-letter { text-transform: uppercase; }
.small { color: var(--faint); font-size: 13px; font-weight: 400; }

.panel {
  background: var(--surface); border-radius: 12px; box-shadow: var(--shadow);
  padding: 22px 24px; margin-bottom: 20px; min-width: 0;
}
.panel > header {
  display: flex; flex-wrap: wrap; gap: 4px 20px; align-items: baseline; justify-content: space-between;
  margin-bottom: 14px;
}
h2 { font-size: 18px; font-weight: 650; letter-spacing: -.01em; }
.columns { display: grid; grid-template-columns: minmax(0, 2fr) minmax(0, 1fr); gap: 0 20px; }
.columns > div { display: flex; flex-direction: column; } .columns > div > :last-child { flex: 1; }

.legend { display: flex; flex-wrap: wrap; align-items: center; font-size: 13px; color: var(--faint); }
.dot { width: 10px; height: 10px; border-radius: 3px; margin: 0 6px 0 16px; }
.chart { display: block; overflow: visible; }
.chart text { font-size: 12px; fill: var(--faint); text-anchor: middle; }
.chart text.value { fill: var(--ink); font-variant-numeric: tabular-nums; }
.chart text.best { fill: var(--ink); font-weight: 650; }
.chart text.scale { text-anchor: end; }
.chart line { stroke: var(--rule); }
.chart g:hover rect { opacity: .8; }
rect.paid { fill: var(--teal); } rect.outstanding { fill: var(--amber); }
.dot.paid, i.paid { background: var(--teal); } .dot.outstanding, i.open { background: var(--amber); }
i.shipped { background: var(--blue); } i.cancelled { background: var(--grey); }

table { width: 100%; border-collapse: collapse; font-size: 14px; }
th, td { padding: 9px 10px; text-align: start; vertical-align: top; border-top: 1px solid var(--rule); }
th:first-child, td:first-child { padding-inline-start: 0; }
th:last-child, td:last-child { padding-inline-end: 0; }
thead th { border-top: 0; color: var(--faint); font-size: 12.5px; font-weight: 500; padding-top: 0; word-break: keep-all; }
tbody th { font-weight: 600; }
td > .small, th > .small { display: block; }
li > .small { margin-inline-start: 2px; }
tfoot th, tfoot td { font-weight: 650; border-top: 2px solid var(--rule); }
.numeric { text-align: end; font-variant-numeric: tabular-nums; } td.numeric { white-space: nowrap; }

.strip { flex: 1; height: 6px; min-width: 40px; border-radius: 3px; background: var(--rule); overflow: hidden; }
.strip i { display: block; height: 100%; border-radius: 3px; }
.meter { display: flex; align-items: center; gap: 10px; min-width: 120px; padding-top: 1px; }
.meter span { font-variant-numeric: tabular-nums; white-space: nowrap; min-width: 3.8em; text-align: end; }
.ranking .strip { margin-top: 6px; }
.ranking td:first-child { width: 2em; color: var(--faint); padding-inline-end: 6px; }
.sparkline { display: block; width: 126px; height: 30px; }
.sparkline polyline { fill: none; stroke: var(--teal); stroke-width: 1.6; stroke-linejoin: round; stroke-linecap: round; }
.sparkline polygon { fill: var(--teal); opacity: .14; }

.state { white-space: nowrap; font-size: 13px; }
.state::before {
  content: ""; display: inline-block; width: 8px; height: 8px; border-radius: 50%;
  margin-inline-end: 7px; vertical-align: 1px; background: var(--grey);
}
.state.paid::before { background: var(--teal); } .state.shipped::before { background: var(--blue); }
.state.open::before { background: var(--amber); }
.shares li { padding: 9px 0 10px; border-top: 1px solid var(--rule); font-size: 14px; }
.shares li:first-child { border-top: 0; padding-top: 0; } .shares li:last-child { padding-bottom: 0; }
.shares p { display: flex; gap: 8px; align-items: baseline; margin-bottom: 5px; }
.shares p :last-child { margin-inline-start: auto; font-variant-numeric: tabular-nums; }
.count { font-weight: 650; font-variant-numeric: tabular-nums; }

tr.month th, tr.month td {
  background: var(--tint); font-weight: 650; padding-block: 7px; border-top: 0;
}
tr.month th:first-child { padding-inline-start: 12px; border-radius: 8px 0 0 8px; }
tr.month td:last-child { padding-inline-end: 12px; border-radius: 0 8px 8px 0; }
.orders tbody:not(:last-child)::after { content: ""; display: block; height: 14px; }
tr.month + tr td { border-top: 0; }
.orders td:first-child, .orders thead th:first-child { padding-inline-start: 12px; }
.orders td:last-child, .orders thead th:last-child { padding-inline-end: 12px; }
.reference { font-variant-numeric: tabular-nums; color: var(--faint); white-space: nowrap; }
.date { white-space: nowrap; }
.items li { padding-inline-start: 3.2em; text-indent: -3.2em; }
.quantity { display: inline-block; min-width: 2.9em; text-indent: 0; text-align: end; color: var(--faint); font-variant-numeric: tabular-nums; }
.remark {
  margin-top: 6px; padding: 1px 0 1px 10px; border-inline-start: 3px solid var(--amber);
  font-size: 13px; color: var(--faint);
}
.remark em, .remark strong { color: var(--ink); }
.remark cite { font-style: normal; text-decoration: underline dotted; text-underline-offset: 3px; }
em:lang(ja), em:lang(zh) { font-style: normal; text-emphasis: filled dot; }
tr.cancelled td { color: var(--faint); } tr.cancelled td.numeric { text-decoration: line-through; }
tr:target td { background: var(--tint); }
.unseen { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); }

@media (max-width: 900px) {
  .tiles { grid-template-columns: repeat(2, 1fr); }
  .columns { display: block; }
}
@media (max-width: 840px) {
  .cards thead { display: none; }
  .cards, .cards tbody, .cards tfoot { display: block; }
  .cards tr { display: grid; grid-template-columns: 1fr auto; gap: 3px 12px; padding: 12px 0; border-top: 1px solid var(--rule); }
  .cards tbody:first-of-type tr:first-child { border-top: 0; padding-top: 0; }
  .cards th, .cards td { border: 0; padding: 0; }
  .cards td:empty { display: none; }
  .cards td[data-label]::before { content: attr(data-label) " "; color: var(--faint); font-size: 13px; font-weight: 400; }
  .categories tr { grid-template-areas: "name money" "seller units" "share trend"; }
  .categories th:first-child { grid-area: name; } .seller { grid-area: seller; }
  .units { grid-area: units; } .money { grid-area: money; }
  .share { grid-area: share; align-self: center; } .trend { grid-area: trend; }
  .categories tfoot tr { border-top-width: 2px; padding-bottom: 0; }
  .orders tr {
    grid-template-columns: auto 1fr auto;
    grid-template-areas: "date reference money" "customer customer state" "items items items";
  }
  .orders tr.month, .cards.orders tbody:first-of-type tr.month {
    grid-template: none / 1fr auto; padding: 7px 0; background: var(--tint); border: 0; border-radius: 8px;
  }
  .orders tr.month + tr { border-top: 0; }
  .cards.orders tr > * { padding: 0; background: none; }
  .date { grid-area: date; font-weight: 600; } .reference { grid-area: reference; font-size: 13px; align-self: center; }
  .customer { grid-area: customer; } .status { grid-area: state; text-align: end; } .items { grid-area: items; }
  .quantity { text-align: start; }
}
@media (max-width: 720px) {
  header.page { padding: 30px 16px 84px; }
  main { padding: 0 12px; } footer.page { padding-inline: 16px; }
  .tiles { gap: 10px; margin-bottom: 12px; } .tile { padding: 12px 14px; }
  .panel { padding: 16px 14px; margin-bottom: 12px; }
  .chart text { font-size: 10.5px; } .chart text.value { font-size: 9.5px; }
}
@media (max-width: 400px) {
  .chart text { font-size: 9px; } .chart text.value { font-size: 8px; }
  .ranking th, .ranking td { padding-inline: 4px; } .ranking tr > :nth-child(3) { display: none; }
}
@media print {
  body { background: none; font-size: 12px; } .panel, .tile { box-shadow: none; border: 1px solid var(--rule); }
  tr { break-inside: avoid; } header.page { color: inherit; background: none; } main { margin-top: -40px; }
}
]]></xsl:template>

</xsl:stylesheet>
