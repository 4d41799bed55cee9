/**
 * @file
 * xsl:number.
 */
#pragma once

#include <xalanc/XSLT/ElemNumber.hpp>

/**
 * xsl:number without a pattern of what to count. The engine makes such a pattern of the current
 * node, and has none for the root of a result tree fragment.
 */
class NumberElement : public xalanc::ElemNumber {
public:
    using ElemNumber::ElemNumber;

    const xalanc::ElemTemplateElement*
    startElement(xalanc::StylesheetExecutionContext& context) const override;
};
