#include "xslt/EvaluateFunction.h"

#include "xslt/ConstructionContext.h"

#include "engine/ExpressionGuard.h"

#include <xalanc/XPath/XObjectFactory.hpp>
#include <xalanc/XPath/XPath.hpp>
#include <xalanc/XPath/XPathProcessorImpl.hpp>

namespace {

/** More than anybody needs, and little stack. */
constexpr unsigned MOST_LEVELS = 100;

class Level {
public:
    explicit Level(unsigned& depth) : m_depth(depth) { ++m_depth; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;
    ~Level() { --m_depth; }

private:
    unsigned& m_depth;
};

/** The result does not refer to the expression, which may end before it. */
xalanc::XObjectPtr separated(const xalanc::XObjectPtr& result,
                             xalanc::XPathExecutionContext& context) {
    switch (result->getType()) {
    case xalanc::XObject::eTypeString:
        return context.getXObjectFactory().createString(result->str(context));
    case xalanc::XObject::eTypeNumber:
        return context.getXObjectFactory().createNumber(result->num(context));
    default:
        return result;
    }
}

} // namespace

struct EvaluateFunction::Compiled {
    Compiled(const xalanc::XalanDOMString& text, const xalanc::PrefixResolver& resolver,
             xalanc::MemoryManager& memory, const xercesc::Locator* locator)
        : expression(text, memory), prefixes(resolver), construction(memory),
          xpath(memory, locator) {
        rejectTooDeepExpression({expression.c_str(), expression.length()});
        xalanc::XPathProcessorImpl processor(memory);
        processor.initXPath(xpath, construction, expression, prefixes, locator);
    }

    const xalanc::XalanDOMString expression;
    const xalanc::PrefixResolver& prefixes;
    ConstructionContext construction;
    xalanc::XPath xpath;
};

template <typename Use>
auto EvaluateFunction::compile(const xalanc::XalanDOMString& expression,
                               xalanc::XPathExecutionContext& context,
                               const xercesc::Locator* locator, Operation& operation, Use use) {
    if (m_depth == MOST_LEVELS) {
        operation.fail(vexa::ErrorKind::Transform, "evaluate() is nested too deeply",
                       toLocation(locator));
    }
    const Level level(m_depth);
    const xalanc::PrefixResolver& prefixes = *context.getPrefixResolver();
    if (!m_last || &m_last->prefixes != &prefixes || m_last->expression != expression) {
        m_last = std::make_shared<const Compiled>(expression, prefixes, context.getMemoryManager(),
                                                  locator);
    }
    const std::shared_ptr<const Compiled> compiled = m_last; // it may evaluate others
    return use(compiled->xpath, prefixes);
}

xalanc::XObjectPtr EvaluateFunction::execute(const xalanc::XalanDOMString& expression,
                                             xalanc::XPathExecutionContext& context,
                                             xalanc::XalanNode* node,
                                             const xercesc::Locator* locator,
                                             Operation& operation) {
    return compile(expression, context, locator, operation,
                   [&](const xalanc::XPath& compiled, const xalanc::PrefixResolver& prefixes) {
                       return separated(compiled.execute(node, prefixes, context), context);
                   });
}

void EvaluateFunction::executeForEach(std::u16string_view expression,
                                      xalanc::XPathExecutionContext& context,
                                      const xalanc::NodeRefListBase& nodes,
                                      const xercesc::Locator* locator, Operation& operation,
                                      const std::function<void(const xalanc::XObject&)>& visit) {
    const xalanc::XalanDOMString text(std::u16string(expression).c_str(),
                                      context.getMemoryManager());
    compile(text, context, locator, operation,
            [&](const xalanc::XPath& compiled, const xalanc::PrefixResolver& prefixes) {
                for (xalanc::NodeRefListBase::size_type i = 0; i < nodes.getLength(); ++i) {
                    operation.poll();
                    xalanc::XalanNode* const node = nodes.item(i);
                    const xalanc::XPathExecutionContext::CurrentNodePushAndPop current(context,
                                                                                       node);
                    visit(*compiled.execute(node, prefixes, nodes, context));
                }
            });
}
