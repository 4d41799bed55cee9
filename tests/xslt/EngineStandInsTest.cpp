/**
 * @file
 * Numbers as text, and xsl:number. They run with the functions that stand in for the engine's, and
 * in a program that has the engine's own: results are the same, but for the tests where that
 * crashes.
 */
#include "XsltTest.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

using vexa::Input;
using vexa::Transformation;
using vexa::Value;

namespace {

/** As the C library writes it, with from 10 to 35 digits behind the point. */
std::string written(double number) {
    char text[400];
    for (int digits = 10; digits <= 35; ++digits) {
        std::snprintf(text, sizeof text, "%.*f", digits, number);
        if (std::strtod(text, nullptr) == number) {
            break;
        }
    }
    std::string all = text;
    all.erase(all.find_last_not_of('0') + 1);
    if (all.back() == '.') {
        all.pop_back();
    }
    return all;
}

class NumberAsTextTest : public ::testing::Test {
protected:
    void expectText(double number, const std::string& text) {
        m_run.parameter("n", Value(number));
        std::string all;
        for (int i = 0; i < 5; ++i) {
            all += text + "|";
        }
        EXPECT_EQ(m_run.toString(m_source), all) << number;
    }

private:
    const vexa::Document m_source = parsed("<a/>");
    Transformation m_run{compiled(
        "<xsl:output method='text'/><xsl:param name='n'/><xsl:template match='/'>"
        "<xsl:value-of select='$n'/>|<xsl:value-of select='string($n)'/>|"
        "<xsl:value-of select='$n + 0'/>|<xsl:value-of select=\"concat($n, '')\"/>|"
        "<xsl:variable name='v'><e a='{$n}'/></xsl:variable>"
        "<xsl:value-of xmlns:xalan='http://xml.apache.org/xalan' select='xalan:nodeset($v)/e/@a'/>|"
        "</xsl:template>")};
};

} // namespace

TEST_F(NumberAsTextTest, SpecialNumbers) {
    expectText(std::nan(""), "NaN");
    expectText(HUGE_VAL, "Infinity");
    expectText(-HUGE_VAL, "-Infinity");
    expectText(0, "0");
    expectText(-0.0, "0");
}

TEST_F(NumberAsTextTest, Integers) {
    expectText(1, "1");
    expectText(-17, "-17");
    expectText(1e18, "1000000000000000000");
    expectText(9007199254740992.0, "9007199254740992");
    expectText(-9223372036854775808.0, "-9223372036854775808");
    expectText(9223372036854775808.0, "9223372036854775808");
    expectText(1e23, "99999999999999991611392");
}

TEST_F(NumberAsTextTest, Fractions) {
    expectText(0.5, "0.5");
    expectText(0.1, "0.1");
    expectText(-1.0 / 3, "-0.3333333333333333");
    expectText(1e-10, "0.0000000001");
    expectText(1e-35, "0.00000000000000000000000000000000001");
    expectText(1e-36, "0");
    expectText(-1e-36, "-0");
    expectText(123456.789, "123456.789");
}

/** Of all sizes that the engine has room for. */
TEST_F(NumberAsTextTest, AnyNumbersThatTheEngineCanWrite) {
    std::mt19937_64 random(1);
    int tested = 0;
    while (tested < 2000) {
        const std::uint64_t bits = random();
        double number = 0;
        std::memcpy(&number, &bits, sizeof number);
        if (std::isfinite(number) && std::fabs(number) < 1e60 && std::fabs(number) > 1e-40) {
            expectText(number, written(number));
            ++tested;
        }
    }
}

/** Exactly, as any whole number that fits. The first is 2 to the power of 400. */
TEST_F(NumberAsTextTest, LargeNumbersWhereTheEngineCrashes) {
    expectText(std::ldexp(1, 400),
               "2582249878086908589655919172003011874329705792829223512830659356540647622016841194"
               "629645353280137831435903171972747493376");
    expectText(-1e90, "-99999999999999996648411271546390004982518609262012550297967459730917975543"
                      "7379230686511104");
    for (const double number : {1e65, -1e89, 1e100, -1e200, 1.7976931348623157e308, -1e308}) {
        expectText(number, written(number));
    }
}

TEST(LargeNumberTest, InExpressionsWhereTheEngineCrashes) {
    const std::string zeros(120, '0');
    const std::string whole = written(std::strtod(("1" + zeros).c_str(), nullptr));
    const auto value = [](const std::string& expression) {
        return Transformation(compiled("<xsl:output method='text'/><xsl:template match='/'>"
                                       "<xsl:value-of select='" +
                                       expression + "'/></xsl:template>"))
            .toString(parsed("<a/>"));
    };
    EXPECT_EQ(value("1" + zeros), whole);
    EXPECT_EQ(value("string-length(1 div 0." + zeros + "1)"), "122");
    EXPECT_EQ(value("1" + zeros + " = concat(\"1" + zeros + "\", \"\")"), "true");
    EXPECT_EQ(vexa::XPath::compile("string(1" + zeros + ")").evaluate(parsed("<a/>")).string(),
              whole);
}

TEST(StringValueTest, HasTheTextsOfTheWholeElement) {
    const std::string source = "<a> <b>1<c/><!--x--><d>2<e><![CDATA[<3]]></e></d></b>"
                               "<?p x?><f> </f>4</a><!--x-->";
    const auto value = [&](const std::string& space, const std::string& expression) {
        return Transformation(
                   compiled("<xsl:output method='text'/>" + space +
                            "<xsl:template match='/'><xsl:value-of select=\"concat('[', " +
                            expression + ", ']')\"/></xsl:template>"))
            .toString(parsed(source));
    };
    const std::string strip = "<xsl:strip-space elements='*'/>";
    EXPECT_EQ(value("", "a"), "[ 12<3 4]");
    EXPECT_EQ(value("", "string(/)"), "[ 12<3 4]");
    EXPECT_EQ(value(strip, "a"), "[12<34]");
    EXPECT_EQ(value(strip, "string(/)"), "[12<34]");
    EXPECT_EQ(value("", "a/b"), "[12<3]");
    EXPECT_EQ(value(strip, "a/b/d"), "[2<3]");
    EXPECT_EQ(value("", "a/b/c"), "[]");
    EXPECT_EQ(value(strip, "a/f"), "[]");
}

TEST(StringValueTest, IsLong) {
    std::string source;
    std::string value;
    for (int i = 0; i < 3000; ++i) {
        const std::string number = std::to_string(i);
        source += "<b>" + number + "</b>";
        value += number;
    }
    for (const std::string space : {"", "<xsl:strip-space elements='*'/>"}) {
        EXPECT_EQ(Transformation(compiled("<xsl:output method='text'/>" + space +
                                          "<xsl:template match='/'><xsl:value-of "
                                          "select='string(a)'/></xsl:template>"))
                      .toString(parsed("<a>" + source + "</a>")),
                  value);
    }
}

namespace {

const std::string NUMBERED_SOURCE = "<a x='1'><b y='2'><i/></b><i/></a>";

/** What xsl:number with these attributes gives for nodes, each in brackets. */
std::string numbers(const std::string& nodes, const std::string& attributes) {
    return Transformation(
               compiled("<xsl:output method='text'/><xsl:template match='/'>"
                        "<xsl:variable name='v'><q/><w><e/><q/></w></xsl:variable>"
                        "<xsl:for-each xmlns:xalan='http://xml.apache.org/xalan' select='" +
                        nodes + "'>[<xsl:number " + attributes +
                        "/>]</xsl:for-each></xsl:template>"))
        .toString(Input::text(NUMBERED_SOURCE));
}

} // namespace

TEST(NumberOfNodesTest, OfElements) {
    EXPECT_EQ(numbers("//i", ""), "[1][1]");
    EXPECT_EQ(numbers("//i", "level='any'"), "[1][2]");
    EXPECT_EQ(numbers("//i", "level='any' from='b'"), "[1][2]");
    EXPECT_EQ(numbers("//i", "level='any' count='i|b'"), "[2][3]");
    EXPECT_EQ(numbers("//i", "level='any' count='none'"), "[][]");
    EXPECT_EQ(numbers("//i", "level='multiple' count='*'"), "[1.1.1][1.2]");
    EXPECT_EQ(numbers("xalan:nodeset($v)//q", "level='any'"), "[1][2]");
}

/** The engine goes on with the parent of the root, which has none. */
TEST(NumberOfNodesTest, OfTheRootWithFromWhereTheEngineCrashes) {
    EXPECT_EQ(numbers("/", "level='any' from='none'"), "[1]");
    EXPECT_EQ(numbers("/", "level='any' from='none' count='/'"), "[1]");
    EXPECT_EQ(numbers("//@*", "level='any' from='none'"), "[1][1]");
}

TEST(NumberOfNodesTest, InAResultTreeFragmentWithFromWhereTheEngineCrashes) {
    EXPECT_EQ(numbers("xalan:nodeset($v)//q", "level='any' from='none'"), "[1][2]");
    EXPECT_EQ(numbers("xalan:nodeset($v)//q", "level='any' from='w'"), "[1][1]");
}

/** The engine has no pattern for this kind of node. */
TEST(NumberOfNodesTest, OfTheRootOfAResultTreeFragment) {
    EXPECT_EQ(numbers("xalan:nodeset($v)", ""), "[1]");
    EXPECT_EQ(numbers("xalan:nodeset($v)", "level='multiple' format='i'"), "[i]");
    EXPECT_EQ(numbers("xalan:nodeset($v)", "level='any' from='none' format='A'"), "[A]");
    EXPECT_EQ(numbers("xalan:nodeset($v)", "value='7'"), "[7]");
    EXPECT_EQ(numbers("xalan:nodeset($v)", "count='q'"), "[]");
}
