/**
 * @file
 * Expressions that stylesheets compose while they run: dyn:evaluate() and xalan:evaluate().
 */
#pragma once

#include "xslt/Operation.h"

#include <xalanc/XPath/XObject.hpp>
#include <xalanc/XPath/XPathExecutionContext.hpp>

/**
 * Evaluates a text as the engine's own functions do. These print what is wrong with it, and
 * overflow the stack where an expression evaluates itself.
 */
class EvaluateFunction {
public:
    /** @throws vexa::Error: Transform for an expression that evaluates itself too deeply; the
     * engine's exceptions for one that is wrong */
    xalanc::XObjectPtr execute(const xalanc::XalanDOMString& expression,
                               xalanc::XPathExecutionContext& context, xalanc::XalanNode* node,
                               const xercesc::Locator* locator, Operation& operation);

private:
    unsigned m_depth = 0;
};
