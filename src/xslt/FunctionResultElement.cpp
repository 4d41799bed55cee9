#include "xslt/FunctionResultElement.h"

#include "xslt/RunContext.h"

#include <xalanc/PlatformSupport/XalanLocator.hpp>
#include <xalanc/XPath/XPath.hpp>
#include <xalanc/XSLT/Stylesheet.hpp>
#include <xalanc/XSLT/StylesheetConstructionContext.hpp>

using Construction = xalanc::StylesheetConstructionContext;

FunctionResultElement::FunctionResultElement(Construction& construction,
                                             xalanc::Stylesheet& stylesheet,
                                             const xalanc::AttributeListType& attributes,
                                             const xercesc::Locator* locator)
    : ElemTemplateElement(construction, stylesheet, xalanc::XalanLocator::getLineNumber(locator),
                          xalanc::XalanLocator::getColumnNumber(locator),
                          Construction::ELEMNAME_EXTENSION_CALL),
      m_name(u"func:result", construction.getMemoryManager()) {
    if (const XMLCh* const select = attributes.getValue(u"select")) {
        m_select = construction.createXPath(getLocator(), select, *this);
    }
}

const xalanc::ElemTemplateElement*
FunctionResultElement::startElement(xalanc::StylesheetExecutionContext& context) const {
    ElemTemplateElement::startElement(context);
    if (m_select) {
        static_cast<RunContext&>(context).setFunctionResult(m_select->execute(*this, context));
        return nullptr;
    }
    context.beginCreateXResultTreeFrag(context.getCurrentNode());
    return beginExecuteChildren(context);
}

void FunctionResultElement::endElement(xalanc::StylesheetExecutionContext& context) const {
    if (!m_select) {
        endExecuteChildren(context);
        static_cast<RunContext&>(context).setFunctionResult(context.endCreateXResultTreeFrag());
    }
    ElemTemplateElement::endElement(context);
}
