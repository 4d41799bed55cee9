#include "xslt/CallTemplateElement.h"

#include "xslt/Text.h"

#include <xalanc/PlatformSupport/XalanLocator.hpp>
#include <xalanc/XSLT/Stylesheet.hpp>
#include <xalanc/XSLT/StylesheetConstructionContext.hpp>
#include <xalanc/XSLT/StylesheetExecutionContext.hpp>
#include <xalanc/XSLT/StylesheetRoot.hpp>

CallTemplateElement::CallTemplateElement(xalanc::StylesheetConstructionContext& construction,
                                         xalanc::Stylesheet& stylesheet,
                                         const xalanc::AttributeListType& attributes,
                                         const xercesc::Locator* locator)
    : ElemCallTemplate(construction, stylesheet, attributes,
                       xalanc::XalanLocator::getLineNumber(locator),
                       xalanc::XalanLocator::getColumnNumber(locator)),
      m_stylesheet(stylesheet),
      m_name(construction.createXalanQName(attributes.getValue(u"name"), stylesheet.getNamespaces(),
                                           getLocator())) {}

void CallTemplateElement::postConstruction(xalanc::StylesheetConstructionContext& construction,
                                           const xalanc::NamespacesHandler& parent) {
    m_bExists = getStylesheet().getStylesheetRoot().findNamedTemplate(*m_name) != nullptr;
    if (m_bExists) {
        ElemCallTemplate::postConstruction(construction, parent);
    } else {
        // The engine executes the called template in place of an instruction that is alone.
        if (!getNextSiblingElem()) {
            setNextSiblingElem(
                construction.createElement(m_stylesheet, u"", 0, false, false, getLocator()));
        }
        // Without looking for it. NOLINTNEXTLINE(bugprone-parent-virtual-call)
        ElemTemplateElement::postConstruction(construction, parent);
    }
}

const xalanc::ElemTemplateElement*
CallTemplateElement::startElement(xalanc::StylesheetExecutionContext& context) const {
    if (!m_bExists) {
        const std::string text = "there is no template '" + toUtf8(m_name->getLocalPart()) + "'";
        context.problem(xalanc::StylesheetExecutionContext::eXSLTProcessor,
                        xalanc::StylesheetExecutionContext::eError,
                        toEngineText(text, context.getMemoryManager()), getLocator(),
                        context.getCurrentNode());
    }
    return ElemCallTemplate::startElement(context);
}
