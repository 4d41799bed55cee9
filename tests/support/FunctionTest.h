/**
 * @file
 * Test fixture that calls extension functions, directly and from stylesheets.
 */
#pragma once

#include "TransformTest.h"

#include <vexa/TqXsltFunction.h>

#include <string>
#include <vector>

#include <xalanc/XPath/XObjectFactoryDefault.hpp>
#include <xalanc/XPath/XPathEnvSupportDefault.hpp>
#include <xalanc/XPath/XPathExecutionContextDefault.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDOMSupport.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDocument.hpp>
#include <xercesc/sax/Locator.hpp>

/** An execution context whose error operation stores the error and returns. */
class LenientExecutionContext : public xalanc::XPathExecutionContextDefault {
public:
    using XPathExecutionContextDefault::XPathExecutionContextDefault;

    void problem(eSource, eClassification, const xalanc::XalanDOMString& message,
                 const xalanc::Locator* locator, const xalanc::XalanNode* node) override;

    std::string m_strProblem;
    const xalanc::XalanNode* m_pNode = nullptr;
    bool m_bHadLocator = false;
};

class FunctionTest : public TransformTest {
protected:
    /** Calls `execute` with string arguments, in a context that continues after an error. */
    std::string callLeniently(const TqXsltFunction& function, const std::vector<std::string>& args);

    /** Calls `execute` with string arguments, followed by a null argument. */
    std::string callWithNull(const TqXsltFunction& function,
                             const std::vector<std::string>& args = {});

    /** The value of an expression in a file transform. Checks that it is the same in memory. */
    std::string evaluate(const std::string& expression);

    /** The error message of the expression, the same in file and stream transforms. */
    std::string errorOf(const std::string& expression);

    LenientExecutionContext& lenientContext() { return m_context; }

    /** The context node of callLeniently(). */
    const xalanc::XalanNode* contextNode() const { return m_pContextNode; }

private:
    using Arguments = xalanc::Function::XObjectArgVectorType;

    Arguments arguments(const std::vector<std::string>& args);

    /** The location of a call. The built-in functions must not report it. */
    class CallLocator : public xercesc::Locator {
        const XMLCh* getPublicId() const override { return nullptr; }
        const XMLCh* getSystemId() const override { return nullptr; }
        XMLFileLoc getLineNumber() const override { return 1; }
        XMLFileLoc getColumnNumber() const override { return 1; }
    };

    std::string sheetThatPrints(const std::string& expression);
    std::string transformInMemory(const std::string& sheet);

    xalanc::XalanSourceTreeDOMSupport m_domSupport;
    xalanc::XPathEnvSupportDefault m_envSupport;
    xalanc::XObjectFactoryDefault m_objectFactory;
    CallLocator m_locator;
    xalanc::XalanSourceTreeDocument m_document{xalanc::XalanMemMgrs::getDefaultXercesMemMgr()};
    xalanc::XalanNode* m_pContextNode = &m_document;
    LenientExecutionContext m_context{m_envSupport, m_domSupport, m_objectFactory};
};

/** Converts an engine string to UTF-8. */
std::string narrow(const xalanc::XalanDOMString& text);
