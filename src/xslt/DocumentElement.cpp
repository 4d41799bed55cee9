#include "xslt/DocumentElement.h"

#include "xslt/RunContext.h"

#include <string_view>

#include <xalanc/PlatformSupport/XalanLocator.hpp>
#include <xalanc/XSLT/Constants.hpp>
#include <xalanc/XSLT/StylesheetConstructionContext.hpp>

using Construction = xalanc::StylesheetConstructionContext;

DocumentElement::DocumentElement(Construction& construction, xalanc::Stylesheet& stylesheet,
                                 const xalanc::AttributeListType& attributes,
                                 const xercesc::Locator* locator)
    : ElemTemplateElement(construction, stylesheet, xalanc::XalanLocator::getLineNumber(locator),
                          xalanc::XalanLocator::getColumnNumber(locator),
                          Construction::ELEMNAME_EXTENSION_CALL),
      m_name(u"exsl:document", construction.getMemoryManager()),
      m_attributes(construction.getMemoryManager()) {
    for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
        const std::u16string_view name = attributes.getName(i);
        if (name.find(u':') == std::u16string_view::npos && name != u"xmlns") {
            m_attributes.push_back(construction.createAVT(getLocator(), attributes.getName(i),
                                                          attributes.getValue(i), *this));
        }
    }
}

const xalanc::ElemTemplateElement*
DocumentElement::startElement(xalanc::StylesheetExecutionContext& context) const {
    ElemTemplateElement::startElement(context);
    ResultAttributes attributes(context.getMemoryManager());
    for (const xalanc::AVT* const attribute : m_attributes) {
        attribute->evaluate(attributes[attribute->getName().c_str()], *this, context);
    }
    static_cast<RunContext&>(context).beginFurtherResult(attributes, getLocator());
    return beginExecuteChildren(context);
}

void DocumentElement::endElement(xalanc::StylesheetExecutionContext& context) const {
    endExecuteChildren(context);
    static_cast<RunContext&>(context).endFurtherResult();
    ElemTemplateElement::endElement(context);
}

bool DocumentElement::executeChildElement(xalanc::StylesheetExecutionContext& /*context*/,
                                          const xalanc::ElemTemplateElement* element) const {
    return element->getXSLToken() != Construction::ELEMNAME_FALLBACK;
}
