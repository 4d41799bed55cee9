/**
 * @file
 * exsl:document and xsl:document.
 */
#pragma once

#include <xalanc/Include/XalanVector.hpp>
#include <xalanc/XSLT/AVT.hpp>
#include <xalanc/XSLT/ElemTemplateElement.hpp>

/** Writes its content to a further result. */
class DocumentElement : public xalanc::ElemTemplateElement {
public:
    DocumentElement(xalanc::StylesheetConstructionContext& construction,
                    xalanc::Stylesheet& stylesheet, const xalanc::AttributeListType& attributes,
                    const xercesc::Locator* locator);

    const xalanc::XalanDOMString& getElementName() const override { return m_name; }
    const xalanc::ElemTemplateElement*
    startElement(xalanc::StylesheetExecutionContext& context) const override;
    void endElement(xalanc::StylesheetExecutionContext& context) const override;
    bool executeChildElement(xalanc::StylesheetExecutionContext& context,
                             const xalanc::ElemTemplateElement* element) const override;

private:
    // In the memory of the stylesheet, which frees it: nobody destroys an element.
    const xalanc::XalanDOMString m_name;
    xalanc::XalanVector<const xalanc::AVT*> m_attributes;
};
