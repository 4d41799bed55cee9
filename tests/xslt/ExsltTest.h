/**
 * @file
 * Expressions with EXSLT functions, in tables.
 */
#pragma once

#include "xslt/XsltTest.h"

#include <ostream>
#include <string>

/** An expression, and the string that it gives. */
struct ExsltCase {
    const char* expression;
    const char* expected;
};

inline std::ostream& operator<<(std::ostream& stream, const ExsltCase& exsltCase) {
    return stream << exsltCase.expression;
}

inline vexa::Namespaces exsltNamespaces() {
    const std::string exslt = "http://exslt.org/";
    return {{"exsl", exslt + "common"}, {"regexp", exslt + "regular-expressions"},
            {"str", exslt + "strings"}, {"math", exslt + "math"},
            {"set", exslt + "sets"},    {"date", exslt + "dates-and-times"},
            {"dyn", exslt + "dynamic"}};
}

/** The document of all expressions. */
inline std::string exsltSource() {
    return "<r><b>3</b><b>1</b><b>x</b><c>3</c><c>1</c><c>2</c><c>3</c>"
           "<p:e xmlns:p='urn:p' a='1'>i<f/></p:e></r>";
}

/** What an expression gives in a stylesheet. The variable "f" is a fragment. */
inline std::string exsltInStylesheet(const std::string& expression,
                                     const vexa::Options& options = {}) {
    std::string declarations;
    for (const auto& [prefix, uri] : exsltNamespaces()) {
        declarations += " xmlns:" + prefix + "='" + uri + "'";
    }
    std::string escaped;
    for (const char c : expression) {
        escaped += c == '"' ? "&quot;" : c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
    }
    return vexa::Transformation(compiled("<xsl:output method='text'/><xsl:template match='/'" +
                                         declarations +
                                         "><xsl:variable name='f'><x>1</x><y>2</y></xsl:variable>"
                                         "<xsl:value-of select=\"" +
                                         escaped + "\"/></xsl:template>"),
                                options)
        .toString(vexa::Input::text(exsltSource()));
}

/** The same without a stylesheet. */
inline std::string exsltInXPath(const std::string& expression, const vexa::Options& options = {}) {
    return vexa::XPath::compile(expression, exsltNamespaces())
        .evaluate(parsed(exsltSource()), options)
        .string();
}

/** Each expression of a table, in a stylesheet and without one. */
class ExsltTest : public ::testing::TestWithParam<ExsltCase> {
protected:
    static void expectValue() {
        const auto& [expression, expected] = GetParam();
        EXPECT_EQ(exsltInStylesheet(expression), expected);
        if (std::string(expression).find('$') == std::string::npos) {
            EXPECT_EQ(exsltInXPath(expression), expected) << "without a stylesheet";
        }
    }
};

/** Expects that an expression fails, in a stylesheet and without one. */
inline void expectExsltFailure(const std::string& expression, const std::string& piece) {
    expectFailure([&] { exsltInStylesheet(expression); }, vexa::ErrorKind::Transform, piece);
    expectFailure([&] { exsltInXPath(expression); }, vexa::ErrorKind::Transform, piece);
}
