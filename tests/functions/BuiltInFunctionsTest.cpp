#include "functions/FunctionGetDateTime.h"
#include "functions/TqXsltFunctionResAccess.h"
#include "functions/TqXsltFunctionTimer.h"
#include "support/FakeTimeStamp.h"
#include "support/FunctionTest.h"
#include "support/TestFunctions.h"
#include "support/VEXAXslTransformerInspector.h"

#include <map>
#include <set>
#include <typeindex>

using Inspector = VEXAXslTransformerInspector;
using BuiltInFunctionsTest = FunctionTest;

namespace {

const std::map<std::string, std::type_index> BUILT_IN_FUNCTIONS = {
    {"GetLocalizedString", typeid(FunctionGetLocalizedString)},
    {"GetDateTime", typeid(FunctionGetDateTime)},
    {"TimerCreate", typeid(FunctionTimerCreate)},
    {"TimerStart", typeid(FunctionTimerStart)},
    {"TimerStop", typeid(FunctionTimerStop)},
    {"TimerTotal", typeid(FunctionTimerTotal)},
    {"TimerReset", typeid(FunctionTimerReset)},
    {"TimerDestroy", typeid(FunctionTimerDestroy)},
};

} // namespace

TEST_F(BuiltInFunctionsTest, ANewTransformerHasExactlyTheEightFunctions) {
    std::set<std::string> names;
    for (const auto& [name, function] : Inspector::functions(m_transformer)) {
        names.insert(name.c_str());
        ASSERT_EQ(BUILT_IN_FUNCTIONS.count(name.c_str()), 1U) << name.c_str();
        EXPECT_EQ(std::type_index(typeid(*function)), BUILT_IN_FUNCTIONS.at(name.c_str()));
    }
    EXPECT_EQ(names.size(), 8U);
}

TEST_F(BuiltInFunctionsTest, EachTransformerHasItsOwnClones) {
    VEXAXslTransformer other;
    std::set<const TqXsltFunction*> clones;
    for (VEXAXslTransformer* transformer : {&m_transformer, &other}) {
        for (const auto& entry : Inspector::functions(*transformer)) {
            clones.insert(entry.second);
        }
    }
    EXPECT_EQ(clones.size(), 16U);
}

TEST_F(BuiltInFunctionsTest, AllCanBeCalledWithoutInstallation) {
    setTimeStamp("20261105120000000");
    gmapTimers.clear();
    const std::string sheet =
        sheetWithRootTemplate("<xsl:variable name='id' select='vexa:TimerCreate()'/>"
                              "<b><xsl:value-of select='vexa:GetLocalizedString(4, \"de\")'/>|"
                              "<xsl:value-of select='vexa:GetDateTime()'/>|"
                              "<xsl:value-of select='$id > 0'/>|"
                              "<xsl:value-of select='vexa:TimerStart($id)'/>|"
                              "<xsl:value-of select='vexa:TimerStop($id)'/>|"
                              "<xsl:value-of select='vexa:TimerTotal($id)'/>|"
                              "<xsl:value-of select='vexa:TimerReset($id)'/>|"
                              "<xsl:value-of select='vexa:TimerDestroy($id)'/></b>");
    const std::string expected = "<b>Summe|12:00:00.000|true|475200000|   0.000|   0.000|   0.000|"
                                 "   0.000</b>";
    EXPECT_EQ(transformFile(source(), sheet).output, expected);
    EXPECT_EQ(transformStream("<a/>", sheet).output, withNul(expected));
}

TEST_F(BuiltInFunctionsTest, AReplacementAffectsOneTransformerOnly) {
    setTimeStamp("20261105120000000");
    const TqXsltFunction* const builtIn = Inspector::functions(m_transformer).at("GetDateTime");
    m_transformer.installExternalFunction("GetDateTime", ConstantFunction("noon"));
    EXPECT_EQ(Inspector::functions(m_transformer).size(), 8U);
    EXPECT_EQ(evaluate("vexa:GetDateTime()"), "noon");

    // The replaced clone is not freed: a host may have a pointer to it.
    EXPECT_EQ(callLeniently(*builtIn, {}), "12:00:00.000");

    VEXAXslTransformer other;
    const std::string sheet =
        sheetWithRootTemplate("<b><xsl:value-of select='vexa:GetDateTime()'/></b>");
    std::istringstream input("<a/>");
    std::ostringstream output;
    EXPECT_EQ(other.doTransform(input, sheet.c_str(), output), 0);
    EXPECT_EQ(output.str(), withNul("<b>12:00:00.000</b>"));
}
