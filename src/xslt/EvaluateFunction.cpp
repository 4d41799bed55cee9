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

xalanc::XObjectPtr EvaluateFunction::execute(const xalanc::XalanDOMString& expression,
                                             xalanc::XPathExecutionContext& context,
                                             xalanc::XalanNode* node,
                                             const xercesc::Locator* locator,
                                             Operation& operation) {
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
    return compiled.execute(node, prefixes, context);
}
