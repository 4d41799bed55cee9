#include "FunctionTest.h"

#include <vexa/Dom2Dom.h>

std::string narrow(const xalanc::XalanDOMString& text) {
    return TqXsltFunction::XalanDOMStringToI18NString(text).c_str();
}

void LenientExecutionContext::problem(eSource source, eClassification classification,
                                      const xalanc::XalanDOMString& message,
                                      const xalanc::Locator* locator,
                                      const xalanc::XalanNode* node) {
    EXPECT_EQ(source, eXPATH);
    EXPECT_EQ(classification, eError);
    m_strProblem = narrow(message);
    m_bHadLocator = locator != nullptr;
    m_pNode = node;
}

std::string FunctionTest::callLeniently(const TqXsltFunction& function,
                                        const std::vector<std::string>& args) {
    const Arguments values = arguments(args);
    return narrow(function.execute(m_context, m_pContextNode, values, &m_locator)->str(m_context));
}

std::string FunctionTest::callWithNull(const TqXsltFunction& function,
                                       const std::vector<std::string>& args) {
    Arguments values = arguments(args);
    values.push_back(xalanc::XObjectPtr());
    return narrow(function.execute(m_context, nullptr, values, nullptr)->str(m_context));
}

FunctionTest::Arguments FunctionTest::arguments(const std::vector<std::string>& args) {
    Arguments values(xalanc::XalanMemMgrs::getDefaultXercesMemMgr());
    for (const std::string& arg : args) {
        values.push_back(
            m_objectFactory.createString(TqXsltFunction::I18NStringToXalanDOMString(arg.c_str())));
    }
    return values;
}

std::string FunctionTest::evaluate(const std::string& expression) {
    const std::string sheet = sheetThatPrints(expression);
    const auto files = transformFile(source(), sheet);
    EXPECT_EQ(files.result, 0) << files.error;
    EXPECT_EQ(transformInMemory(sheet), files.output);
    return files.output;
}

std::string FunctionTest::errorOf(const std::string& expression) {
    const std::string sheet = sheetThatPrints(expression);
    const auto files = transformFile(source(), sheet);
    const auto streams = transformStream("<a/>", sheet);
    EXPECT_EQ(files.result, -1);
    EXPECT_EQ(streams.result, -1);
    EXPECT_EQ(files.error, streams.error);
    return files.error;
}

std::string FunctionTest::sheetThatPrints(const std::string& expression) {
    return m_folder.write("print.xsl",
                          stylesheet("<xsl:output method='text'/><xsl:template match='/'>"
                                     "<xsl:value-of select=\"" +
                                     expression + "\"/></xsl:template>"));
}

std::string FunctionTest::transformInMemory(const std::string& sheet) {
    const auto in = m_transformer.createDom2Dom();
    const auto out = m_transformer.createDom2Dom();
    std::ostringstream text;
    in->InitializeInputSource("<a>x</a>");
    out->InitializeOutputTarget(text);
    EXPECT_EQ(m_transformer.doTransform(*in, sheet.c_str(), *out), 0)
        << m_transformer.getLastError();
    return text.str();
}
