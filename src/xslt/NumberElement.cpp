#include "xslt/NumberElement.h"

#include <xalanc/XSLT/StylesheetExecutionContext.hpp>
#include <xalanc/XalanDOM/XalanNode.hpp>

const xalanc::ElemTemplateElement*
NumberElement::startElement(xalanc::StylesheetExecutionContext& context) const {
    if (context.getCurrentNode()->getNodeType() != xalanc::XalanNode::DOCUMENT_FRAGMENT_NODE) {
        return ElemNumber::startElement(context);
    }
    // As ElemNumber::startElement() begins. NOLINTNEXTLINE(bugprone-parent-virtual-call)
    ElemTemplateElement::startElement(context);
    constexpr CountType ONE = 1; // there is no other root
    const xalanc::StylesheetExecutionContext::GetCachedString text(context);
    formatNumberList(context, &ONE, 1, text.get());
    context.characters(text.get().c_str(), 0, text.get().length());
    return nullptr;
}
