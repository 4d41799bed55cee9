#include "xslt/CallTemplateElement.h"

#include "xslt/Text.h"

#include <xalanc/PlatformSupport/XalanLocator.hpp>
#include <xalanc/XSLT/Stylesheet.hpp>
#include <xalanc/XSLT/StylesheetConstructionContext.hpp>
#include <xalanc/XSLT/StylesheetExecutionContext.hpp>
#include <xalanc/XSLT/StylesheetRoot.hpp>

using Construction = xalanc::StylesheetConstructionContext;

CallTemplateElement::CallTemplateElement(Construction& construction, xalanc::Stylesheet& stylesheet,
                                         const xalanc::AttributeListType& attributes,
                                         const xercesc::Locator* locator)
    : ElemCallTemplate(construction, stylesheet, attributes,
                       xalanc::XalanLocator::getLineNumber(locator),
                       xalanc::XalanLocator::getColumnNumber(locator)),
      m_stylesheet(stylesheet),
      m_name(construction.createXalanQName(attributes.getValue(u"name"), stylesheet.getNamespaces(),
                                           getLocator())) {}

void CallTemplateElement::postConstruction(Construction& construction,
                                           const xalanc::NamespacesHandler& parent) {
    m_bExists = getStylesheet().getStylesheetRoot().findNamedTemplate(*m_name) != nullptr;
    // The engine executes the called template in place of an instruction that is alone, and does
    // not find back where that is in xsl:fallback.
    xalanc::ElemTemplateElement* const element = getParentNodeElem();
    const bool isInFallback = element && element->getXSLToken() == Construction::ELEMNAME_FALLBACK;
    if ((!m_bExists || isInFallback) && !getNextSiblingElem()) {
        xalanc::ElemTemplateElement* const text =
            construction.createElement(m_stylesheet, u"", 0, false, false, getLocator());
        text->setParentNodeElem(element);
        setNextSiblingElem(text);
    }
    if (m_bExists) {
        ElemCallTemplate::postConstruction(construction, parent);
    } else {
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
