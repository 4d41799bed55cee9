/**
 * @file
 * exsl:document, xsl:document and saxon:output.
 */
#pragma once

#include <string_view>

#include <xalanc/Include/XalanVector.hpp>
#include <xalanc/XSLT/AVT.hpp>
#include <xalanc/XSLT/ElemTemplateElement.hpp>

/** Writes its content to a further result. */
class DocumentElement : public xalanc::ElemTemplateElement {
public:
    /** Whether this extension element is one; saxon:output is what others offer, too. */
    static bool isNamed(std::u16string_view uri, std::u16string_view name) {
        return (uri == u"http://exslt.org/common" && name == u"document") ||
               (uri == u"http://icl.com/saxon" && name == u"output");
    }

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
