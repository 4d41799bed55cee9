#include "xslt/EvaluateFunction.h"

#include "xslt/ConstructionContext.h"

#include "engine/ExpressionGuard.h"

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

} // namespace

template <typename Use>
auto EvaluateFunction::compile(const xalanc::XalanDOMString& expression,
                               xalanc::XPathExecutionContext& context,
                               const xercesc::Locator* locator, Operation& operation, Use use) {
    if (m_depth == MOST_LEVELS) {
        operation.fail(vexa::ErrorKind::Transform, "evaluate() is nested too deeply",
                       toLocation(locator));
    }
    const Level level(m_depth);
    rejectTooDeepExpression({expression.c_str(), expression.length()});
    auto& memory = context.getMemoryManager();
    const xalanc::PrefixResolver& prefixes = *context.getPrefixResolver();
    xalanc::XPathProcessorImpl processor(memory);
    ConstructionContext construction(memory);
    xalanc::XPath compiled(memory, locator);
    processor.initXPath(compiled, construction, expression, prefixes, locator);
    return use(compiled, prefixes);
}

xalanc::XObjectPtr EvaluateFunction::execute(const xalanc::XalanDOMString& expression,
                                             xalanc::XPathExecutionContext& context,
                                             xalanc::XalanNode* node,
                                             const xercesc::Locator* locator,
                                             Operation& operation) {
    return compile(expression, context, locator, operation,
                   [&](const xalanc::XPath& compiled, const xalanc::PrefixResolver& prefixes) {
                       return compiled.execute(node, prefixes, context);
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
