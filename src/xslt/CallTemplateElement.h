/**
 * @file
 * xsl:call-template.
 */
#pragma once

#include <xalanc/XSLT/ElemCallTemplate.hpp>

/** A template that does not exist is an error only where it is called: the engine's own is sooner.
 */
class CallTemplateElement : public xalanc::ElemCallTemplate {
public:
    /** The attributes have a name. */
    CallTemplateElement(xalanc::StylesheetConstructionContext& construction,
                        xalanc::Stylesheet& stylesheet, const xalanc::AttributeListType& attributes,
                        const xercesc::Locator* locator);

    void postConstruction(xalanc::StylesheetConstructionContext& construction,
                          const xalanc::NamespacesHandler& parent) override;
    const xalanc::ElemTemplateElement*
    startElement(xalanc::StylesheetExecutionContext& context) const override;

private:
    xalanc::Stylesheet& m_stylesheet;
    const xalanc::XalanQName* m_name;
    bool m_bExists = true;
};
