/**
 * @file
 * Expressions that stylesheets compose while they run: those of dyn:evaluate(),
 * xalan:evaluate(), and the other functions of EXSLT that take one.
 */
#pragma once

#include "xslt/Operation.h"

#include <functional>
#include <memory>
#include <string_view>

#include <xalanc/XPath/NodeRefListBase.hpp>
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
    /** Evaluates an expression for each node of a list, which is the context. */
    void executeForEach(std::u16string_view expression, xalanc::XPathExecutionContext& context,
                        const xalanc::NodeRefListBase& nodes, const xercesc::Locator* locator,
                        Operation& operation,
                        const std::function<void(const xalanc::XObject&)>& visit);

    /** Lets go of what belongs to the run. */
    void finish() { m_last.reset(); }

private:
    struct Compiled;

    /** Calls `use` with the compiled expression. */
    template <typename Use>
    auto compile(const xalanc::XalanDOMString& expression, xalanc::XPathExecutionContext& context,
                 const xercesc::Locator* locator, Operation& operation, Use use);

    unsigned m_depth = 0;
    /** In loops the same expression is evaluated again and again. */
    std::shared_ptr<const Compiled> m_last;
};
