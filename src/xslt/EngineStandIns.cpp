/**
 * @file
 * Functions of the engine that crash or waste time, and that no virtual function reaches, defined
 * again. The dynamic linker prefers them to the engine's where this library comes before the engine
 * in the program's list of libraries: it does unless the program itself names the engine first.
 * Results are the engine's wherever that has one. Other versions of the engine may differ: they
 * keep their own.
 */
#include <xalanc/Include/XalanVersion.hpp>

#if XALAN_VERSION_MAJOR == 1 && XALAN_VERSION_MINOR == 12

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include <xalanc/DOMSupport/DOMServices.hpp>
#include <xalanc/PlatformSupport/DOMStringHelper.hpp>
#include <xalanc/PlatformSupport/ExecutionContext.hpp>
#include <xalanc/XPath/XPath.hpp>
#include <xalanc/XSLT/ElemNumber.hpp>
#include <xalanc/XSLT/StylesheetExecutionContext.hpp>
#include <xalanc/XalanDOM/XalanElement.hpp>
#include <xalanc/XalanDOM/XalanNode.hpp>
#include <xalanc/XalanDOM/XalanText.hpp>

#define STAND_IN __attribute__((visibility("default")))

namespace {

/** A number as the engine writes it. The engine has room for 100 characters only. */
class NumberCharacters {
public:
    explicit NumberCharacters(double number) {
        if (std::isnan(number)) {
            assign("NaN");
        } else if (std::isinf(number)) {
            assign(number > 0 ? "Infinity" : "-Infinity");
        } else if (number == 0) {
            assign("0"); // minus zero too
        } else if (number == std::trunc(number) && std::fabs(number) < 1e18) {
            char text[20];
            const auto end =
                std::to_chars(text, std::end(text), static_cast<std::int64_t>(number)).ptr;
            assign(std::string_view(text, static_cast<std::size_t>(end - text)));
        } else {
            assign(number);
        }
    }
    const char16_t* characters() const { return m_characters; }
    std::size_t length() const { return m_length; }

private:
    /** 309 digits before the point, 35 behind it, and a sign. */
    static constexpr std::size_t MOST = 350;
    /** The smallest number, with as many digits as give it back. */
    static constexpr std::size_t SHORTEST = 400;

    void assign(std::string_view text) {
        std::copy(text.begin(), text.end(), m_characters);
        m_length = text.size();
    }

    /** With the fewest digits from 10 to 35 behind the point that give the number back. */
    void assign(double number) {
        // Below, numbers with ten digits behind the point are far apart compared with doubles.
        constexpr double SMALL = 1e5;
        char text[SHORTEST];
        char* end = std::to_chars(text, std::end(text), number, std::chars_format::fixed).ptr;
        const char* const point = std::find(text, end, '.');
        const auto behind = end - point - 1;
        if (behind > 35) {
            end = std::to_chars(text, std::end(text), number, std::chars_format::fixed, 35).ptr;
        } else if (behind < 10 && std::fabs(number) >= SMALL) {
            double back = 0;
            int digits = 10;
            do {
                end = std::to_chars(text, std::end(text), number, std::chars_format::fixed, digits)
                          .ptr;
                std::from_chars(text, end, back);
            } while (back != number && ++digits <= 35);
        }
        while (end[-1] == '0') {
            --end;
        }
        if (end[-1] == '.') {
            --end;
        }
        assign(std::string_view(text, static_cast<std::size_t>(end - text)));
    }

    char16_t m_characters[MOST];
    std::size_t m_length = 0;
};

/**
 * The string-value of an element. The engine makes room for each text anew, and copies what is
 * there: for all of a long document this takes long.
 */
template <typename IsWanted>
void appendTexts(const xalanc::XalanElement& element, xalanc::XalanDOMString& data,
                 IsWanted isWanted) {
    const xalanc::XalanNode* node = &element;
    while (true) {
        const xalanc::XalanNode* next = node->getNodeType() == xalanc::XalanNode::ELEMENT_NODE
                                            ? node->getFirstChild()
                                            : nullptr;
        while (!next && node != &element) {
            next = node->getNextSibling();
            node = node->getParentNode();
        }
        if (!next) {
            return;
        }
        node = next;
        const auto type = node->getNodeType();
        if (type != xalanc::XalanNode::TEXT_NODE && type != xalanc::XalanNode::CDATA_SECTION_NODE) {
            continue;
        }
        const auto& text = static_cast<const xalanc::XalanText&>(*node);
        if (isWanted(text)) {
            const auto length = data.length() + text.getData().length();
            if (length > data.capacity()) {
                data.reserve(2 * length);
            }
            data.append(text.getData());
        }
    }
}

} // namespace

namespace XALAN_CPP_NAMESPACE {

STAND_IN XalanDOMString& NumberToDOMString(double number, XalanDOMString& result) {
    const NumberCharacters text(number);
    return result.append(text.characters(), text.length());
}

STAND_IN void DOMStringHelper::NumberToCharacters(double number, FormatterListener& listener,
                                                  MemberFunctionPtr function) {
    const NumberCharacters text(number);
    (listener.*function)(text.characters(), text.length());
}

/** The engine's goes on with the parent of a node that has none: of a root, or an attribute. */
STAND_IN XalanNode* ElemNumber::getPreviousNode(StylesheetExecutionContext& context,
                                                XalanNode* node) const {
    const StylesheetExecutionContext::XPathGuard madeUp(
        context, m_countMatchPattern ? nullptr : getCountMatchPattern(context, node));
    const auto matches = [&](const XPath& pattern, XalanNode& tested) {
        return pattern.getMatchScore(&tested, *this, context) != XPath::eMatchScoreNone;
    };
    const XPath* const count = m_countMatchPattern ? m_countMatchPattern : madeUp.get();
    do {
        XalanNode* next = node->getPreviousSibling();
        if (m_level == eAny) {
            if (next) {
                while (XalanNode* const child = next->getLastChild()) {
                    next = child;
                }
            } else {
                next = node->getParentNode();
                if (next && (next->getNodeType() == XalanNode::DOCUMENT_NODE ||
                             (m_fromMatchPattern && matches(*m_fromMatchPattern, *next)))) {
                    return nullptr;
                }
            }
        }
        node = next;
    } while (node && count && !matches(*count, *node));
    return node;
}

STAND_IN void DOMServices::getNodeData(const XalanElement& element, XalanDOMString& data) {
    appendTexts(element, data, [](const XalanText& /*text*/) { return true; });
}

STAND_IN void DOMServices::doGetNodeData(const XalanElement& element, ExecutionContext& context,
                                         XalanDOMString& data) {
    appendTexts(element, data,
                [&](const XalanText& text) { return !context.shouldStripSourceNode(text); });
}

} // namespace XALAN_CPP_NAMESPACE

#endif
