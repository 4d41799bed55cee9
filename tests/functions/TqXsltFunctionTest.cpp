#include <vexa/TqXsltFunction.h>

#include "support/CountingMemoryManager.h"
#include "support/EngineTest.h"
#include "support/TestFiles.h"
#include "support/TestFunctions.h"

#include <vexa/VEXAXslTransformer.h>

#include <memory>
#include <sstream>
#include <typeinfo>

#include <xalanc/PlatformSupport/XSLException.hpp>
#include <xalanc/XPath/XObjectFactoryDefault.hpp>
#include <xalanc/XPath/XPathEnvSupportDefault.hpp>
#include <xalanc/XPath/XPathExecutionContextDefault.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDOMSupport.hpp>
#include <xercesc/util/PlatformUtils.hpp>

using xalanc::XalanDOMString;

namespace {

XalanDOMString toEngine(const I18NString& text) {
    return TqXsltFunction::I18NStringToXalanDOMString(text);
}

I18NString fromEngine(const XalanDOMString& text) {
    return TqXsltFunction::XalanDOMStringToI18NString(text);
}

/** Makes the protected getError() accessible. */
class ExposedFunction : public BracketFunction {
public:
    using TqXsltFunction::getError;
    XalanDOMString getError() const override { return XalanDOMString("takes one argument"); }
};

} // namespace

using TqXsltFunctionTest = EngineTest;

TEST_F(TqXsltFunctionTest, EmptyTextsConvertToEmptyTexts) {
    EXPECT_TRUE(toEngine(I18NString()).empty());
    EXPECT_TRUE(fromEngine(XalanDOMString()).empty());
    EXPECT_TRUE(fromEngine(toEngine(I18NString())).empty());
}

TEST_F(TqXsltFunctionTest, TextsInAnyScriptSurviveARoundTrip) {
    for (const char* text : {"plain", "\xCE\xB1\xCE\xB2\xCE\xB3", "\xE4\xBD\xA0\xE5\xA5\xBD",
                             "\xF0\x9F\x98\x80", "\xC3\xA9"}) {
        EXPECT_EQ(fromEngine(toEngine(text)), I18NString(text));
    }
    const XalanDOMString greek = toEngine("\xCE\xB1\xCE\xB2");
    ASSERT_EQ(greek.length(), 2U);
    EXPECT_EQ(greek[0], u'\u03B1');
    EXPECT_EQ(greek[1], u'\u03B2');
}

TEST_F(TqXsltFunctionTest, ALoneSurrogateSurvivesARoundTrip) {
    const I18NString lone(u"a\xD800z", -1, nullptr, nullptr);
    EXPECT_EQ(fromEngine(toEngine(lone)), lone);
}

TEST_F(TqXsltFunctionTest, ACloneHasTheSameClassAndErrorText) {
    const BracketFunction function;
    const TqXsltFunction& base = function;
    const std::unique_ptr<TqXsltFunction> clone(base.clone());
    EXPECT_EQ(typeid(*clone), typeid(BracketFunction));
    EXPECT_EQ(clone->getError(), base.getError());
}

TEST_F(TqXsltFunctionTest, ItsErrorTextIsPassedToTheEngine) {
    const ExposedFunction function;
    XalanDOMString buffer;
    EXPECT_EQ(function.getError(buffer), XalanDOMString("takes one argument"));
}

TEST_F(TqXsltFunctionTest, TheEnginesCloneIsInTheEnginesMemoryAndFreesItsFunction) {
    const int alive = ConstantFunction::s_alive;
    CountingMemoryManager memory;
    {
        const ConstantFunction function("text");
        const TqXsltFunction& base = function;
        xalanc::Function* const clone = base.clone(memory);
        EXPECT_EQ(memory.blocks(), 1U);
        xalanc::Function* const second = clone->clone(memory);
        EXPECT_EQ(memory.blocks(), 2U);
        for (xalanc::Function* each : {clone, second}) {
            each->~Function();
            memory.deallocate(each);
        }
    }
    EXPECT_EQ(memory.blocks(), 0U);
    EXPECT_EQ(memory.foreignBlocks(), 0U);
    EXPECT_EQ(ConstantFunction::s_alive, alive);
}

/** The execute() overloads with a fixed number of arguments report the error text. */
TEST_F(TqXsltFunctionTest, TheEnginesCloneReportsTheErrorText) {
    CountingMemoryManager memory;
    const BracketFunction function;
    xalanc::Function* const clone = static_cast<const TqXsltFunction&>(function).clone(memory);
    xalanc::XalanSourceTreeDOMSupport domSupport;
    xalanc::XPathEnvSupportDefault envSupport;
    xalanc::XObjectFactoryDefault objectFactory;
    xalanc::XPathExecutionContextDefault context(envSupport, domSupport, objectFactory);
    try {
        clone->execute(context, nullptr, nullptr);
        ADD_FAILURE() << "no report";
    } catch (const xalanc::XSLException& report) {
        EXPECT_EQ(report.getMessage(), XalanDOMString("takes one argument"));
    }
    clone->~Function();
    memory.deallocate(clone);
}

TEST_F(TqXsltFunctionTest, ACloneThatRunsOutOfMemoryLeaksNothing) {
    const int alive = ConstantFunction::s_alive;
    CountingMemoryManager memory;
    memory.failAfter(0);
    {
        const ConstantFunction function("text");
        const TqXsltFunction& base = function;
        EXPECT_THROW(base.clone(memory), xercesc::OutOfMemoryException);
    }
    EXPECT_EQ(ConstantFunction::s_alive, alive);
}

/** Without the fixture EngineTest: the host initializes Xerces before the library. */
TEST(TqXsltFunctionInAHost, IsFreedByItsOwnAllocatorIfTheHostHasAMemoryManager) {
    CountingMemoryManager memory;
    xercesc::XMLPlatformUtils::Initialize("en_US", nullptr, nullptr, &memory);
    TQXslTransformer_Initialize(nullptr);
    {
        const TemporaryFolder folder;
        const std::string sheet = folder.write(
            "a.xsl", stylesheetWithRootTemplate("<b><xsl:value-of select='vexa:B(a)'/></b>"));
        VEXAXslTransformer transformer;
        transformer.installExternalFunction("B", BracketFunction());
        for (int i = 0; i < 3; ++i) {
            std::istringstream source("<a>x</a>");
            std::ostringstream output;
            EXPECT_EQ(transformer.doTransform(source, sheet.c_str(), output), 0);
            EXPECT_EQ(output.str(), std::string("<b>[x]</b>") + '\0');
        }
    }
    TQXslTransformer_Terminate(nullptr);
    xercesc::XMLPlatformUtils::Terminate();
    EXPECT_EQ(memory.blocks(), 0U);
    EXPECT_EQ(memory.foreignBlocks(), 0U);
}
