<?xml version="1.0" encoding="UTF-8"?>
<!--
  Converts an order book to a page with key figures, turnover by month and category, the best
  customers, and all orders. Frame, style, and the formatting of numbers and dates are in
  report-layout.xsl.

  Parameters: title; currency (an ISO 4217 code, only for display: amounts are not converted); lang
  (the language of number formats and category names; the fixed texts are in English, other languages
  are in report-localised.xsl).
-->
<xsl:stylesheet version="1.0"
                xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="http://vexa.example/orders"
                xmlns:cat="http://vexa.example/catalogue"
                xmlns:adr="http://vexa.example/addresses"
                xmlns:xalan="http://xml.apache.org/xalan"
                exclude-result-prefixes="o cat adr xalan">

  <xsl:import href="report-layout.xsl"/>

  <!-- The system identifier creates a DOCTYPE: without it, browsers use quirks mode. -->
  <xsl:output method="html" encoding="UTF-8" indent="yes" doctype-system="about:legacy-compat"/>

  <xsl:param name="title">
    <xsl:call-template name="of-year">
      <xsl:with-param name="what" select="$text-order-book"/>
    </xsl:call-template>
  </xsl:param>
  <xsl:param name="currency" select="string(/o:orderBook/@currency)"/>
  <xsl:param name="lang" select="'en'"/>

  <!-- ============ Texts: all fixed texts of the page ============ -->

  <xsl:variable name="text-language" select="'en'"/>

  <xsl:variable name="text-order-book" select="'Order book'"/>
  <xsl:variable name="text-orders" select="'Orders'"/>
  <xsl:variable name="text-turnover" select="'Turnover'"/>
  <xsl:variable name="text-outstanding" select="'Outstanding'"/>
  <xsl:variable name="text-total" select="'Total'"/>
  <xsl:variable name="text-category" select="'Category'"/>
  <xsl:variable name="text-customers" select="'Customers'"/>
  <xsl:variable name="text-countries" select="'Countries'"/>
  <xsl:variable name="text-date" select="'Date'"/>
  <xsl:variable name="text-quantity" select="'Quantity'"/>
  <xsl:variable name="text-amount" select="'Amount'"/>
  <xsl:variable name="text-state" select="'State'"/>
  <xsl:variable name="text-open" select="'Open'"/>
  <xsl:variable name="text-shipped" select="'Shipped'"/>
  <xsl:variable name="text-paid" select="'Paid'"/>
  <xsl:variable name="text-cancelled" select="'Cancelled'"/>

  <xsl:variable name="text-best-month" select="'Best month'"/>
  <xsl:variable name="text-best-seller" select="'Best seller'"/>
  <xsl:variable name="text-through-the-year" select="'Through the year'"/>
  <xsl:variable name="text-rank" select="'Rank'"/>
  <xsl:variable name="text-items" select="'Items'"/>

  <xsl:variable name="text-cancelled-count" select="'{0} cancelled'"/>
  <xsl:variable name="text-average-order" select="'{0} per order'"/>
  <xsl:variable name="text-outstanding-share" select="'{0} of turnover'"/>
  <xsl:variable name="text-thousands" select="'in thousands of {0}'"/>

  <xsl:variable name="text-footnote"
                select="'Turnover leaves out cancelled orders. Outstanding is what open and shipped orders still have to bring in.'"/>

  <!-- Date patterns: see the template 'date'. -->
  <xsl:variable name="text-as-of" select="'As of {day} {month} {year}'"/>
  <xsl:variable name="text-of-year" select="'{0} {year}'"/>
  <xsl:variable name="text-month-of-year" select="'{month} {year}'"/>
  <xsl:variable name="text-day-of-year" select="'{day} {mon}'"/>
  <xsl:variable name="text-first-day" select="'1'"/>

  <xsl:variable name="text-months">
    <month number="01" short="Jan">January</month>
    <month number="02" short="Feb">February</month>
    <month number="03" short="Mar">March</month>
    <month number="04" short="Apr">April</month>
    <month number="05" short="May">May</month>
    <month number="06" short="Jun">June</month>
    <month number="07" short="Jul">July</month>
    <month number="08" short="Aug">August</month>
    <month number="09" short="Sep">September</month>
    <month number="10" short="Oct">October</month>
    <month number="11" short="Nov">November</month>
    <month number="12" short="Dec">December</month>
  </xsl:variable>

  <!-- ============ Keys ============ -->

  <xsl:key name="product" match="cat:product" use="@id"/>
  <xsl:key name="category" match="cat:category" use="@id"/>
  <xsl:key name="customer" match="o:customer" use="@id"/>
  <xsl:key name="orders-of-month" match="o:order" use="substring(@date, 1, 7)"/>

  <!-- Keys of the computed figures, whose elements have no namespace. -->
  <xsl:key name="figures" match="figures" use="@order"/>
  <xsl:key name="figures-in-state" match="figures" use="@state"/>
  <xsl:key name="figures-of-month" match="figures[@state != 'cancelled']" use="@month"/>
  <xsl:key name="figures-of-customer" match="figures[@state != 'cancelled']" use="@customer"/>
  <xsl:key name="figures-of-country" match="figures[@state != 'cancelled']" use="@country"/>
  <xsl:key name="lines-of-category" match="figures[@state != 'cancelled']/line" use="@category"/>
  <xsl:key name="lines-of-product" match="figures[@state != 'cancelled']/line" use="@product"/>
  <xsl:key name="lines-of-category-and-month" match="figures[@state != 'cancelled']/line"
           use="concat(@category, ' ', ../@month)"/>

  <!-- ============ Figures ============ -->

  <xsl:variable name="book" select="/"/>
  <xsl:variable name="year" select="/o:orderBook/@year"/>
  <xsl:variable name="months" select="xalan:nodeset($text-months)/month"/>

  <!-- In the order in which the page lists them. -->
  <xsl:variable name="states-tree">
    <state code="paid"><xsl:value-of select="$text-paid"/></state>
    <state code="shipped"><xsl:value-of select="$text-shipped"/></state>
    <state code="open"><xsl:value-of select="$text-open"/></state>
    <state code="cancelled"><xsl:value-of select="$text-cancelled"/></state>
  </xsl:variable>
  <xsl:variable name="states" select="xalan:nodeset($states-tree)/state"/>

  <!-- Amounts are integers in cents, so that sums are exact. -->
  <xsl:variable name="figures-tree">
    <xsl:for-each select="/o:orderBook/o:orders/o:order">
      <xsl:variable name="lines">
        <xsl:for-each select="o:line">
          <line product="{@product}" category="{key('product', @product)/@category}"
                quantity="{@quantity}" cents="{round(@quantity * @price * 100)}"/>
        </xsl:for-each>
      </xsl:variable>
      <figures order="{@id}" month="{substring(@date, 1, 7)}" customer="{@customer}"
               country="{key('customer', @customer)/adr:address/adr:country/@code}" state="{@state}"
               cents="{sum(xalan:nodeset($lines)/line/@cents)}">
        <xsl:copy-of select="$lines"/>
      </figures>
    </xsl:for-each>
  </xsl:variable>
  <xsl:variable name="figures" select="xalan:nodeset($figures-tree)"/>

  <xsl:variable name="counted" select="$figures/figures[@state != 'cancelled']"/>
  <xsl:variable name="turnover" select="sum($counted/@cents)"/>
  <xsl:variable name="outstanding" select="sum($counted[@state != 'paid']/@cents)"/>

  <!-- One element for each month of the year, with or without orders. -->
  <xsl:variable name="month-figures-tree">
    <xsl:for-each select="$months">
      <xsl:variable name="month" select="."/>
      <xsl:variable name="id" select="concat($year, '-', @number)"/>
      <xsl:for-each select="$figures">
        <xsl:variable name="orders" select="key('figures-of-month', $id)"/>
        <month id="{$id}" name="{$month}" short="{$month/@short}" cents="{sum($orders/@cents)}"
               outstanding="{sum($orders[@state != 'paid']/@cents)}"/>
      </xsl:for-each>
    </xsl:for-each>
  </xsl:variable>
  <xsl:variable name="month-figures" select="xalan:nodeset($month-figures-tree)/month"/>

  <xsl:variable name="best-month-tree">
    <xsl:for-each select="$month-figures">
      <xsl:sort select="@cents" data-type="number" order="descending"/>
      <xsl:if test="position() = 1">
        <xsl:copy-of select="."/>
      </xsl:if>
    </xsl:for-each>
  </xsl:variable>
  <xsl:variable name="best-month" select="xalan:nodeset($best-month-tree)/month"/>

  <!-- ============ The parts of the page ============ -->

  <xsl:template match="o:orderBook" mode="page-header">
    <p class="house"><xsl:value-of select="o:house"/></p>
    <h1><xsl:value-of select="$title"/></h1>
    <p class="as-of">
      <xsl:call-template name="date">
        <xsl:with-param name="date" select="@asOf"/>
        <xsl:with-param name="pattern" select="$text-as-of"/>
      </xsl:call-template>
    </p>
  </xsl:template>

  <xsl:template match="o:orderBook" mode="page-body">
    <xsl:call-template name="tiles"/>
    <xsl:call-template name="month-chart"/>
    <xsl:call-template name="category-table"/>
    <div class="columns">
      <xsl:call-template name="customer-table"/>
      <div>
        <xsl:call-template name="state-list"/>
        <xsl:call-template name="country-list"/>
      </div>
    </div>
    <xsl:apply-templates select="o:orders"/>
  </xsl:template>

  <xsl:template match="o:orderBook" mode="page-footer">
    <p><xsl:value-of select="$text-footnote"/></p>
  </xsl:template>

  <!-- 'Turnover 2025' -->
  <xsl:template name="of-year">
    <xsl:param name="what"/>
    <xsl:call-template name="date">
      <xsl:with-param name="date" select="$year"/>
      <xsl:with-param name="pattern">
        <xsl:call-template name="fill">
          <xsl:with-param name="pattern" select="$text-of-year"/>
          <xsl:with-param name="with" select="$what"/>
        </xsl:call-template>
      </xsl:with-param>
    </xsl:call-template>
  </xsl:template>

  <!-- ============ Tiles ============ -->

  <xsl:template name="tiles">
    <section class="tiles">
      <xsl:call-template name="tile">
        <xsl:with-param name="label" select="$text-orders"/>
        <xsl:with-param name="value">
          <xsl:call-template name="number">
            <xsl:with-param name="value" select="count($figures/figures)"/>
          </xsl:call-template>
        </xsl:with-param>
        <xsl:with-param name="note">
          <xsl:call-template name="fill">
            <xsl:with-param name="pattern" select="$text-cancelled-count"/>
            <xsl:with-param name="with" select="count($figures/figures[@state = 'cancelled'])"/>
          </xsl:call-template>
        </xsl:with-param>
      </xsl:call-template>
      <xsl:call-template name="tile">
        <xsl:with-param name="label" select="$text-turnover"/>
        <xsl:with-param name="value">
          <xsl:call-template name="money">
            <xsl:with-param name="cents" select="$turnover"/>
          </xsl:call-template>
        </xsl:with-param>
        <xsl:with-param name="note">
          <xsl:if test="$counted">
            <xsl:call-template name="fill">
              <xsl:with-param name="pattern" select="$text-average-order"/>
              <xsl:with-param name="with">
                <xsl:call-template name="money">
                  <xsl:with-param name="cents" select="round($turnover div count($counted))"/>
                </xsl:call-template>
              </xsl:with-param>
            </xsl:call-template>
          </xsl:if>
        </xsl:with-param>
      </xsl:call-template>
      <xsl:call-template name="tile">
        <xsl:with-param name="kind" select="'warm'"/>
        <xsl:with-param name="label" select="$text-outstanding"/>
        <xsl:with-param name="value">
          <xsl:call-template name="money">
            <xsl:with-param name="cents" select="$outstanding"/>
          </xsl:call-template>
        </xsl:with-param>
        <xsl:with-param name="note">
          <xsl:call-template name="fill">
            <xsl:with-param name="pattern" select="$text-outstanding-share"/>
            <xsl:with-param name="with">
              <xsl:call-template name="percentage">
                <xsl:with-param name="part" select="$outstanding"/>
                <xsl:with-param name="whole" select="$turnover"/>
              </xsl:call-template>
            </xsl:with-param>
          </xsl:call-template>
        </xsl:with-param>
      </xsl:call-template>
      <xsl:call-template name="tile">
        <xsl:with-param name="label" select="$text-best-month"/>
        <xsl:with-param name="value" select="$best-month/@name"/>
        <xsl:with-param name="note">
          <xsl:call-template name="money">
            <xsl:with-param name="cents" select="$best-month/@cents"/>
          </xsl:call-template>
        </xsl:with-param>
      </xsl:call-template>
    </section>
  </xsl:template>

  <!-- ============ Turnover by month ============ -->

  <xsl:template name="month-chart">
    <xsl:variable name="step">
      <xsl:call-template name="scale-step">
        <xsl:with-param name="maximum" select="$best-month/@cents"/>
      </xsl:call-template>
    </xsl:variable>
    <xsl:variable name="top" select="$step * ceiling($best-month/@cents div $step)"/>
    <xsl:variable name="unit">
      <xsl:choose>
        <xsl:when test="$top &gt;= 100000">100000</xsl:when>
        <xsl:otherwise>100</xsl:otherwise>
      </xsl:choose>
    </xsl:variable>
    <xsl:variable name="heading">
      <xsl:call-template name="of-year">
        <xsl:with-param name="what" select="$text-turnover"/>
      </xsl:call-template>
    </xsl:variable>
    <section class="panel">
      <header>
        <h2><xsl:value-of select="$heading"/></h2>
        <p class="legend">
          <xsl:choose>
            <xsl:when test="$unit = 100000">
              <xsl:call-template name="fill">
                <xsl:with-param name="pattern" select="$text-thousands"/>
                <xsl:with-param name="with" select="$currency-sign"/>
              </xsl:call-template>
            </xsl:when>
            <xsl:otherwise>
              <xsl:value-of select="$currency-sign"/>
            </xsl:otherwise>
          </xsl:choose>
          <span class="dot paid"/>
          <xsl:value-of select="$text-paid"/>
          <span class="dot outstanding"/>
          <xsl:value-of select="$text-outstanding"/>
        </p>
      </header>
      <!-- No viewBox: widths are percentages, so the labels keep their size on narrow screens. -->
      <svg class="chart" role="img" aria-label="{$heading}" width="100%" height="{$chart-height}">
        <xsl:call-template name="grid-lines">
          <xsl:with-param name="step" select="$step"/>
          <xsl:with-param name="top" select="$top"/>
          <xsl:with-param name="unit" select="$unit"/>
        </xsl:call-template>
        <xsl:apply-templates select="$month-figures" mode="bar">
          <xsl:with-param name="top" select="$top"/>
          <xsl:with-param name="unit" select="$unit"/>
        </xsl:apply-templates>
      </svg>
    </section>
  </xsl:template>

  <xsl:template match="month" mode="bar">
    <xsl:param name="top"/>
    <xsl:param name="unit"/>
    <xsl:variable name="slot" select="(100 - $chart-margin) div 12"/>
    <xsl:variable name="middle" select="round(10 * ($chart-margin + (position() - 0.5) * $slot)) div 10"/>
    <xsl:variable name="left" select="round(10 * ($middle - $chart-bar div 2)) div 10"/>
    <xsl:variable name="height" select="round($chart-plot * @cents div $top)"/>
    <xsl:variable name="outstanding" select="round($chart-plot * @outstanding div $top)"/>
    <xsl:variable name="y" select="$chart-floor - $height"/>
    <xsl:variable name="pattern">
      <xsl:choose>
        <xsl:when test="$unit = 100">#,##0</xsl:when>
        <xsl:otherwise>#,##0.0</xsl:otherwise>
      </xsl:choose>
    </xsl:variable>
    <xsl:if test="@cents &gt; 0">
      <g>
        <title>
          <xsl:value-of select="concat(@name, ' · ')"/>
          <xsl:call-template name="money">
            <xsl:with-param name="cents" select="@cents"/>
          </xsl:call-template>
        </title>
        <rect xsl:use-attribute-sets="bar" class="paid" x="{$left}%" y="{$y + $outstanding}"
              height="{$height - $outstanding}"/>
        <rect xsl:use-attribute-sets="bar" class="outstanding" x="{$left}%" y="{$y}" height="{$outstanding}"/>
        <text class="value" x="{$middle}%" y="{$y - 7}">
          <xsl:call-template name="number">
            <xsl:with-param name="value" select="@cents div $unit"/>
            <xsl:with-param name="pattern" select="$pattern"/>
          </xsl:call-template>
        </text>
      </g>
    </xsl:if>
    <text x="{$middle}%" y="{$chart-floor + 20}">
      <xsl:if test="@id = $best-month/@id">
        <xsl:attribute name="class">best</xsl:attribute>
      </xsl:if>
      <xsl:value-of select="@short"/>
    </text>
  </xsl:template>

  <!-- ============ Turnover by category ============ -->

  <xsl:template name="category-table">
    <section class="panel">
      <header>
        <h2><xsl:value-of select="concat($text-turnover, ' · ', $text-category)"/></h2>
      </header>
      <table class="cards categories">
        <thead>
          <tr>
            <th><xsl:value-of select="$text-category"/></th>
            <th><xsl:value-of select="$text-best-seller"/></th>
            <th xsl:use-attribute-sets="numeric"><xsl:value-of select="$text-quantity"/></th>
            <th xsl:use-attribute-sets="numeric"><xsl:value-of select="$text-turnover"/></th>
            <th>%</th>
            <th><xsl:value-of select="$text-through-the-year"/></th>
          </tr>
        </thead>
        <tbody>
          <!-- The first line of each category represents the category. -->
          <xsl:for-each select="$figures/figures/line[generate-id()
                                = generate-id(key('lines-of-category', @category)[1])]">
            <xsl:sort select="sum(key('lines-of-category', @category)/@cents)" data-type="number"
                      order="descending"/>
            <xsl:call-template name="category-row"/>
          </xsl:for-each>
        </tbody>
        <tfoot>
          <tr>
            <th colspan="2"><xsl:value-of select="$text-total"/></th>
            <td class="numeric units" data-label="{$text-quantity}">
              <xsl:call-template name="number">
                <xsl:with-param name="value" select="sum($counted/line/@quantity)"/>
              </xsl:call-template>
            </td>
            <td class="numeric money">
              <xsl:call-template name="money">
                <xsl:with-param name="cents" select="$turnover"/>
              </xsl:call-template>
            </td>
            <td colspan="2"/>
          </tr>
        </tfoot>
      </table>
    </section>
  </xsl:template>

  <xsl:template name="category-row">
    <xsl:variable name="id" select="@category"/>
    <xsl:variable name="lines" select="key('lines-of-category', $id)"/>
    <xsl:variable name="cents" select="sum($lines/@cents)"/>
    <tr>
      <th scope="row">
        <xsl:for-each select="$book">
          <xsl:apply-templates select="key('category', $id)"/>
        </xsl:for-each>
      </th>
      <td class="seller">
        <xsl:for-each select="$lines[generate-id() = generate-id(key('lines-of-product', @product)[1])]">
          <xsl:sort select="sum(key('lines-of-product', @product)/@cents)" data-type="number"
                    order="descending"/>
          <xsl:if test="position() = 1">
            <xsl:variable name="product" select="@product"/>
            <xsl:for-each select="$book">
              <xsl:apply-templates select="key('product', $product)" mode="with-gloss"/>
            </xsl:for-each>
          </xsl:if>
        </xsl:for-each>
      </td>
      <td class="numeric units" data-label="{$text-quantity}">
        <xsl:call-template name="number">
          <xsl:with-param name="value" select="sum($lines/@quantity)"/>
        </xsl:call-template>
      </td>
      <td class="numeric money">
        <xsl:call-template name="money">
          <xsl:with-param name="cents" select="$cents"/>
        </xsl:call-template>
      </td>
      <td class="share">
        <xsl:call-template name="meter">
          <xsl:with-param name="part" select="$cents"/>
          <xsl:with-param name="whole" select="$turnover"/>
        </xsl:call-template>
      </td>
      <td class="trend">
        <xsl:variable name="values">
          <xsl:for-each select="$month-figures">
            <xsl:variable name="category-and-month" select="concat($id, ' ', @id)"/>
            <value>
              <xsl:for-each select="$figures">
                <xsl:value-of select="sum(key('lines-of-category-and-month', $category-and-month)/@cents)"/>
              </xsl:for-each>
            </value>
          </xsl:for-each>
        </xsl:variable>
        <xsl:call-template name="sparkline">
          <xsl:with-param name="values" select="xalan:nodeset($values)/value"/>
        </xsl:call-template>
      </td>
    </tr>
  </xsl:template>

  <!-- ============ Customers ============ -->

  <xsl:template name="customer-table">
    <!-- Sorted into a variable, because the bars are relative to the best customer. -->
    <xsl:variable name="ranking-tree">
      <xsl:for-each select="$figures/figures[generate-id()
                            = generate-id(key('figures-of-customer', @customer)[1])]">
        <xsl:sort select="sum(key('figures-of-customer', @customer)/@cents)" data-type="number"
                  order="descending"/>
        <xsl:sort select="@customer"/>
        <xsl:if test="position() &lt;= 10">
          <ranked customer="{@customer}" orders="{count(key('figures-of-customer', @customer))}"
                  cents="{sum(key('figures-of-customer', @customer)/@cents)}"/>
        </xsl:if>
      </xsl:for-each>
    </xsl:variable>
    <xsl:variable name="ranking" select="xalan:nodeset($ranking-tree)/ranked"/>
    <section class="panel">
      <header>
        <h2><xsl:value-of select="concat($text-turnover, ' · ', $text-customers)"/></h2>
      </header>
      <table class="ranking">
        <thead>
          <tr>
            <th xsl:use-attribute-sets="numeric">
              <span class="unseen"><xsl:value-of select="$text-rank"/></span>
            </th>
            <th><xsl:value-of select="$text-customers"/></th>
            <th xsl:use-attribute-sets="numeric"><xsl:value-of select="$text-orders"/></th>
            <th xsl:use-attribute-sets="numeric"><xsl:value-of select="$text-turnover"/></th>
          </tr>
        </thead>
        <tbody>
          <xsl:apply-templates select="$ranking">
            <xsl:with-param name="best" select="$ranking[1]/@cents"/>
          </xsl:apply-templates>
        </tbody>
      </table>
    </section>
  </xsl:template>

  <xsl:template match="ranked">
    <xsl:param name="best"/>
    <xsl:variable name="id" select="@customer"/>
    <tr>
      <td xsl:use-attribute-sets="numeric"><xsl:number/></td>
      <th scope="row">
        <xsl:for-each select="$book">
          <xsl:apply-templates select="key('customer', $id)"/>
        </xsl:for-each>
      </th>
      <td xsl:use-attribute-sets="numeric">
        <xsl:call-template name="number">
          <xsl:with-param name="value" select="@orders"/>
        </xsl:call-template>
      </td>
      <td xsl:use-attribute-sets="numeric">
        <xsl:call-template name="money">
          <xsl:with-param name="cents" select="@cents"/>
        </xsl:call-template>
        <xsl:call-template name="strip">
          <xsl:with-param name="part" select="@cents"/>
          <xsl:with-param name="whole" select="$best"/>
        </xsl:call-template>
      </td>
    </tr>
  </xsl:template>

  <!-- ============ States and countries ============ -->

  <xsl:template name="state-list">
    <section class="panel">
      <header>
        <h2><xsl:value-of select="concat($text-orders, ' · ', $text-state)"/></h2>
      </header>
      <ul class="shares">
        <xsl:apply-templates select="$states" mode="summary"/>
      </ul>
    </section>
  </xsl:template>

  <xsl:template match="state" mode="summary">
    <xsl:variable name="state" select="."/>
    <xsl:for-each select="$figures">
      <xsl:variable name="orders" select="key('figures-in-state', $state/@code)"/>
      <li>
        <p>
          <xsl:apply-templates select="$state"/>
          <span class="count">
            <xsl:call-template name="number">
              <xsl:with-param name="value" select="count($orders)"/>
            </xsl:call-template>
          </span>
          <span class="small">
            <xsl:call-template name="money">
              <xsl:with-param name="cents" select="sum($orders/@cents)"/>
            </xsl:call-template>
          </span>
        </p>
        <xsl:call-template name="strip">
          <xsl:with-param name="kind" select="$state/@code"/>
          <xsl:with-param name="part" select="count($orders)"/>
          <xsl:with-param name="whole" select="count($figures/figures)"/>
        </xsl:call-template>
      </li>
    </xsl:for-each>
  </xsl:template>

  <xsl:template name="country-list">
    <section class="panel">
      <header>
        <h2><xsl:value-of select="concat($text-turnover, ' · ', $text-countries)"/></h2>
      </header>
      <ul class="shares">
        <xsl:for-each select="$figures/figures[generate-id()
                              = generate-id(key('figures-of-country', @country)[1])]">
          <xsl:sort select="sum(key('figures-of-country', @country)/@cents)" data-type="number"
                    order="descending"/>
          <xsl:if test="position() &lt;= 7">
            <xsl:variable name="customer" select="@customer"/>
            <xsl:variable name="cents" select="sum(key('figures-of-country', @country)/@cents)"/>
            <li>
              <p>
                <xsl:for-each select="$book">
                  <xsl:for-each select="key('customer', $customer)/adr:address/adr:country">
                    <xsl:call-template name="name"/>
                  </xsl:for-each>
                </xsl:for-each>
                <span class="small">
                  <xsl:call-template name="money">
                    <xsl:with-param name="cents" select="$cents"/>
                  </xsl:call-template>
                </span>
              </p>
              <xsl:call-template name="strip">
                <xsl:with-param name="part" select="$cents"/>
                <xsl:with-param name="whole" select="$turnover"/>
              </xsl:call-template>
            </li>
          </xsl:if>
        </xsl:for-each>
      </ul>
    </section>
  </xsl:template>

  <xsl:template match="state">
    <span class="state {@code}"><xsl:value-of select="."/></span>
  </xsl:template>

  <!-- ============ Orders ============ -->

  <xsl:template match="o:orders">
    <section class="panel">
      <header>
        <h2><xsl:value-of select="$text-orders"/></h2>
      </header>
      <table class="cards orders">
        <thead>
          <tr>
            <th><xsl:value-of select="$text-orders"/></th>
            <th><xsl:value-of select="$text-date"/></th>
            <th><xsl:value-of select="$text-customers"/></th>
            <th><xsl:value-of select="$text-items"/></th>
            <th><xsl:value-of select="$text-state"/></th>
            <th xsl:use-attribute-sets="numeric"><xsl:value-of select="$text-amount"/></th>
          </tr>
        </thead>
        <xsl:for-each select="o:order[generate-id()
                              = generate-id(key('orders-of-month', substring(@date, 1, 7))[1])]">
          <xsl:sort select="@date" order="descending"/>
          <xsl:call-template name="month-of-orders"/>
        </xsl:for-each>
      </table>
    </section>
  </xsl:template>

  <xsl:template name="month-of-orders">
    <xsl:variable name="id" select="substring(@date, 1, 7)"/>
    <tbody>
      <tr class="month">
        <th colspan="5">
          <xsl:call-template name="date">
            <xsl:with-param name="date" select="@date"/>
            <xsl:with-param name="pattern" select="$text-month-of-year"/>
          </xsl:call-template>
        </th>
        <td xsl:use-attribute-sets="numeric">
          <xsl:for-each select="$figures">
            <xsl:call-template name="money">
              <xsl:with-param name="cents" select="sum(key('figures-of-month', $id)/@cents)"/>
            </xsl:call-template>
          </xsl:for-each>
        </td>
      </tr>
      <xsl:apply-templates select="key('orders-of-month', $id)">
        <xsl:sort select="@date" order="descending"/>
        <xsl:sort select="@id" order="descending"/>
      </xsl:apply-templates>
    </tbody>
  </xsl:template>

  <xsl:template match="o:order">
    <xsl:variable name="id" select="@id"/>
    <tr class="{@state}" id="order-{@id}">
      <td class="reference"><xsl:value-of select="@id"/></td>
      <td class="date">
        <time datetime="{@date}">
          <xsl:call-template name="date">
            <xsl:with-param name="date" select="@date"/>
            <xsl:with-param name="pattern" select="$text-day-of-year"/>
          </xsl:call-template>
        </time>
      </td>
      <td class="customer"><xsl:apply-templates select="key('customer', @customer)"/></td>
      <td class="items">
        <ul>
          <xsl:apply-templates select="o:line"/>
        </ul>
        <xsl:apply-templates select="o:remark"/>
      </td>
      <td class="status"><xsl:apply-templates select="$states[@code = current()/@state]"/></td>
      <td xsl:use-attribute-sets="numeric">
        <xsl:for-each select="$figures">
          <xsl:call-template name="money">
            <xsl:with-param name="cents" select="key('figures', $id)/@cents"/>
          </xsl:call-template>
        </xsl:for-each>
      </td>
    </tr>
  </xsl:template>

  <xsl:template match="o:line">
    <li>
      <span class="quantity">
        <xsl:call-template name="number">
          <xsl:with-param name="value" select="@quantity"/>
        </xsl:call-template>
        <xsl:text>&#160;×</xsl:text>
      </span>
      <xsl:text> </xsl:text>
      <xsl:apply-templates select="key('product', @product)" mode="with-gloss"/>
    </li>
  </xsl:template>

  <!-- ============ Names ============ -->

  <!-- Han characters differ between Japanese and Chinese fonts: each name has its language. -->
  <xsl:template name="name">
    <xsl:param name="class"/>
    <span lang="{ancestor-or-self::*[@xml:lang][1]/@xml:lang}">
      <xsl:if test="$class">
        <xsl:attribute name="class"><xsl:value-of select="$class"/></xsl:attribute>
      </xsl:if>
      <xsl:value-of select="."/>
    </span>
  </xsl:template>

  <xsl:template match="cat:category">
    <xsl:variable name="translated" select="cat:name[lang($language)]"/>
    <xsl:for-each select="$translated | cat:name[not($translated)][1]">
      <xsl:call-template name="name"/>
    </xsl:for-each>
  </xsl:template>

  <xsl:template match="cat:product">
    <xsl:for-each select="cat:name">
      <xsl:call-template name="name"/>
    </xsl:for-each>
  </xsl:template>

  <xsl:template match="cat:product" mode="with-gloss">
    <xsl:apply-templates select="."/>
    <xsl:text> </xsl:text>
    <xsl:for-each select="cat:gloss">
      <xsl:call-template name="name">
        <xsl:with-param name="class" select="'small'"/>
      </xsl:call-template>
    </xsl:for-each>
  </xsl:template>

  <xsl:template match="o:customer">
    <xsl:for-each select="o:name">
      <xsl:call-template name="name"/>
    </xsl:for-each>
    <xsl:text> </xsl:text>
    <span class="small" lang="{@xml:lang}">
      <xsl:value-of select="concat(adr:address/adr:city, ' · ', adr:address/adr:country)"/>
    </span>
  </xsl:template>

  <!-- ============ Remarks ============ -->

  <xsl:template match="o:remark">
    <p class="remark" lang="{@xml:lang}"><xsl:apply-templates mode="remark"/></p>
  </xsl:template>

  <xsl:template match="o:em" mode="remark">
    <em><xsl:apply-templates mode="remark"/></em>
  </xsl:template>

  <xsl:template match="o:strong" mode="remark">
    <strong><xsl:apply-templates mode="remark"/></strong>
  </xsl:template>

  <xsl:template match="o:product" mode="remark">
    <cite><xsl:apply-templates select="key('product', @ref)"/></cite>
  </xsl:template>

</xsl:stylesheet>
