/**
 * @file
 * Which white space of source documents is stripped.
 */
#pragma once

#include <xalanc/XSLT/StylesheetRoot.hpp>
#include <xalanc/XalanDOM/XalanElement.hpp>
#include <xalanc/XalanDOM/XalanText.hpp>

#include <array>
#include <cstddef>
#include <cstdint>

/**
 * Remembers by the name of an element whether its white space is stripped. The engine compares the
 * name with all names of xsl:strip-space and xsl:preserve-space each time that it visits a text.
 *
 * A document has each name once: until clear(), all documents must stay.
 */
class StripAnswers {
public:
    bool isStripped(const xalanc::XalanText& text, const xalanc::StylesheetRoot& stylesheet) {
        if (!stylesheet.hasPreserveOrStripSpaceElements() || !text.isWhitespace()) {
            return false;
        }
        const xalanc::XalanNode* const parent = text.getParentNode();
        if (!parent || parent->getNodeType() != xalanc::XalanNode::ELEMENT_NODE) {
            return false;
        }
        const auto* const name = &parent->getNodeName();
        const auto* const uri = &parent->getNamespaceURI();
        Answer& answer = m_answers[(reinterpret_cast<std::uintptr_t>(name) / sizeof(*name)) % MOST];
        if (answer.name != name || answer.uri != uri) {
            answer = {name, uri, stylesheet.shouldStripSourceNode(text)};
        }
        return answer.isStripped;
    }

    void clear() { m_answers.fill({}); }

private:
    struct Answer {
        const xalanc::XalanDOMString* name;
        const xalanc::XalanDOMString* uri;
        bool isStripped;
    };

    static constexpr std::size_t MOST = 256;

    std::array<Answer, MOST> m_answers{};
};
