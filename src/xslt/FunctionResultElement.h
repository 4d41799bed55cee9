/**
 * @file
 * func:result.
 */
#pragma once

#include <xalanc/XSLT/ElemTemplateElement.hpp>
#include <xalanc/XalanDOM/XalanDOMString.hpp>

/** Gives a function of the stylesheet its result: an expression, or a tree. */
class FunctionResultElement : public xalanc::ElemTemplateElement {
public:
    FunctionResultElement(xalanc::StylesheetConstructionContext& construction,
                          xalanc::Stylesheet& stylesheet,
                          const xalanc::AttributeListType& attributes,
                          const xercesc::Locator* locator);

    const xalanc::XalanDOMString& getElementName() const override { return m_name; }
    const xalanc::ElemTemplateElement*
    startElement(xalanc::StylesheetExecutionContext& context) const override;
    void endElement(xalanc::StylesheetExecutionContext& context) const override;

private:
    const xalanc::XalanDOMString m_name;
    /** Null for a tree. */
    const xalanc::XPath* m_select = nullptr;
};
