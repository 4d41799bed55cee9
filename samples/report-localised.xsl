<?xml version="1.0" encoding="UTF-8"?>
<!--
  The page of report.xsl in any language, with the creation time in the footer. It needs the extension
  functions of vexa-xslt:

    vexa-xslt transform report-localised.xsl orders.xml -p lang=el

  Parameter lang: de, el, en, es, fr, it, ja or zh, also as de_AT, de-AT or DE; the default, also for
  unknown languages, is English. The parameters title and currency are those of report.xsl.

  Most texts are in the message catalogue. The others are in report-words.xml.
-->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="http://vexa.example/orders"
                xmlns:vexa="http://vexa.example/xslt/wol"
                xmlns:xalan="http://xml.apache.org/xalan"
                exclude-result-prefixes="o vexa xalan">

  <xsl:import href="report.xsl"/>

  <!-- ============ Language ============ -->

  <!-- zh for zh-Hans: the script in the language tag is only for the page. -->
  <xsl:key name="words" match="words" use="substring-before(concat(@xml:lang, '-'), '-')"/>

  <!-- A copy, because key() searches only the document of the context node. -->
  <xsl:variable name="words-tree">
    <xsl:for-each select="document('report-words.xml')">
      <xsl:variable name="found" select="key('words', $asked-language)"/>
      <xsl:copy-of select="$found | key('words', 'en')[not($found)]"/>
    </xsl:for-each>
  </xsl:variable>
  <xsl:variable name="words" select="xalan:nodeset($words-tree)/words"/>

  <xsl:variable name="text-language" select="$words/@xml:lang"/>

  <!-- The message catalogue also accepts other spellings, such as deu. It gets the language of the
       words, so that a page never has two languages. -->
  <xsl:variable name="language" select="substring-before(concat($text-language, '-'), '-')"/>

  <!-- ============ Texts ============ -->

  <xsl:variable name="text-order-book" select="vexa:GetLocalizedString(0, $language)"/>
  <xsl:variable name="text-orders" select="vexa:GetLocalizedString(1, $language)"/>
  <xsl:variable name="text-turnover" select="vexa:GetLocalizedString(2, $language)"/>
  <xsl:variable name="text-outstanding" select="vexa:GetLocalizedString(3, $language)"/>
  <xsl:variable name="text-total" select="vexa:GetLocalizedString(4, $language)"/>
  <xsl:variable name="text-category" select="vexa:GetLocalizedString(5, $language)"/>
  <xsl:variable name="text-customers" select="vexa:GetLocalizedString(6, $language)"/>
  <xsl:variable name="text-countries" select="vexa:GetLocalizedString(7, $language)"/>
  <xsl:variable name="text-date" select="vexa:GetLocalizedString(8, $language)"/>
  <xsl:variable name="text-quantity" select="vexa:GetLocalizedString(9, $language)"/>
  <xsl:variable name="text-amount" select="vexa:GetLocalizedString(10, $language)"/>
  <xsl:variable name="text-state" select="vexa:GetLocalizedString(11, $language)"/>
  <xsl:variable name="text-open" select="vexa:GetLocalizedString(12, $language)"/>
  <xsl:variable name="text-shipped" select="vexa:GetLocalizedString(13, $language)"/>
  <xsl:variable name="text-paid" select="vexa:GetLocalizedString(14, $language)"/>
  <xsl:variable name="text-cancelled" select="vexa:GetLocalizedString(15, $language)"/>
  <xsl:variable name="text-elapsed-time" select="vexa:GetLocalizedString(17, $language)"/>
  <xsl:variable name="text-created-at" select="vexa:GetLocalizedString(18, $language)"/>

  <xsl:variable name="text-best-month" select="$words/best-month"/>
  <xsl:variable name="text-best-seller" select="$words/best-seller"/>
  <xsl:variable name="text-through-the-year" select="$words/through-the-year"/>
  <xsl:variable name="text-rank" select="$words/rank"/>
  <xsl:variable name="text-items" select="$words/items"/>
  <xsl:variable name="text-cancelled-count" select="$words/cancelled-count"/>
  <xsl:variable name="text-average-order" select="$words/average-order"/>
  <xsl:variable name="text-outstanding-share" select="$words/outstanding-share"/>
  <xsl:variable name="text-thousands" select="$words/thousands"/>
  <xsl:variable name="text-seconds" select="$words/seconds"/>
  <xsl:variable name="text-footnote" select="$words/footnote"/>
  <xsl:variable name="text-as-of" select="$words/as-of"/>
  <xsl:variable name="text-of-year" select="$words/of-year"/>
  <xsl:variable name="text-month-of-year" select="$words/month-of-year"/>
  <xsl:variable name="text-day-of-year" select="$words/day-of-year"/>
  <xsl:variable name="text-first-day" select="$words/first-day"/>
  <xsl:variable name="months" select="$words/month"/>

  <!-- ============ Times ============ -->

  <!-- The engine evaluates a global variable once, when it is first used, and a local variable where it
       is declared, even if it is not used. -->
  <xsl:variable name="timer" select="vexa:TimerCreate()"/>

  <!-- The body needs nearly all of the time: half of it for the table of orders, the rest for the
       figures, which are computed when the tiles use them first. -->
  <xsl:template match="o:orderBook" mode="page-body">
    <xsl:variable name="start" select="vexa:TimerStart($timer)"/>
    <xsl:apply-imports/>
    <xsl:variable name="seconds" select="vexa:TimerStop($timer)"/>
  </xsl:template>

  <xsl:template match="o:orderBook" mode="page-footer">
    <xsl:apply-imports/>
    <p>
      <xsl:value-of select="concat($text-created-at, ' ',
                                   translate(vexa:GetDateTime(), '.', substring($separators, 2)),
                                   ' · ', $text-elapsed-time, ' ')"/>
      <xsl:call-template name="fill">
        <xsl:with-param name="pattern" select="$text-seconds"/>
        <xsl:with-param name="with">
          <xsl:call-template name="number">
            <!-- TimerDestroy returns the total. -->
            <xsl:with-param name="value" select="number(vexa:TimerDestroy($timer))"/>
            <xsl:with-param name="pattern" select="'0.000'"/>
          </xsl:call-template>
        </xsl:with-param>
      </xsl:call-template>
    </p>
  </xsl:template>

</xsl:stylesheet>
