/**
 * @file
 * What a stylesheet can execute.
 */
#pragma once

#include <vexa/xslt/Stylesheet.h>

#include <cstddef>
#include <unordered_map>
#include <vector>

#include <xalanc/XSLT/ElemTemplateElement.hpp>

/** The instructions of a stylesheet, by their elements. */
class InstructionList {
public:
    /** @param elements those that nothing executes are left out */
    explicit InstructionList(const std::vector<const xalanc::ElemTemplateElement*>& elements);

    const std::vector<vexa::Instruction>& all() const { return m_instructions; }

    static constexpr std::size_t NONE = ~std::size_t{0};
    /** Where an element is in the list; NONE for a text. */
    std::size_t indexOf(const xalanc::ElemTemplateElement& element) const {
        const auto found = m_indices.find(&element);
        return found == m_indices.end() ? NONE : found->second;
    }
    /**
     * The xsl:call-template that is alone in an element, where the engine has put the template in
     * its place; null where it has not.
     */
    const xalanc::ElemTemplateElement*
    replacedIn(const xalanc::ElemTemplateElement& element) const {
        const auto found = m_replaced.find(&element);
        return found == m_replaced.end() ? nullptr : found->second;
    }

private:
    std::vector<vexa::Instruction> m_instructions;
    std::unordered_map<const xalanc::ElemTemplateElement*, std::size_t> m_indices;
    /** By the parent. */
    std::unordered_map<const xalanc::ElemTemplateElement*, const xalanc::ElemTemplateElement*>
        m_replaced;
};
