#include "exslt/ExsltCall.h"

#include <unicode/utf16.h>

#include <xalanc/DOMSupport/DOMServices.hpp>
#include <xalanc/XPath/XObjectFactory.hpp>
#include <xalanc/XPath/XPath.hpp>

std::u16string_view ExsltCall::text(std::size_t index) const {
    const xalanc::XalanDOMString& text = m_arguments[index]->str(m_context);
    return {text.c_str(), text.length()};
}

ExsltCall::Result ExsltCall::result(std::u16string_view text) const {
    // The engine takes a null-terminated text for a length of zero.
    return text.empty() ? m_context.getXObjectFactory().createString(u"")
                        : m_context.getXObjectFactory().createString(text.data(), text.size());
}

ExsltCall::Result ExsltCall::result(double number) const {
    return m_context.getXObjectFactory().createNumber(number);
}

ExsltCall::Result ExsltCall::result(bool boolean) const {
    return m_context.getXObjectFactory().createBoolean(boolean);
}

void ExsltCall::fail(const std::string& text) const {
    auto& memory = m_context.getMemoryManager();
    throw xalanc::XalanXPathException(xalanc::XalanDOMString(text.c_str(), memory), memory);
}

void checkLength(std::size_t length, std::size_t more, const ExsltCall& call) {
    call.poll();
    if (more > MOST_CHARACTERS - length) {
        call.fail("The result of an EXSLT function is too long.");
    }
}

std::u16string textOf(const xalanc::XalanNode& node, const ExsltCall& call) {
    xalanc::XalanDOMString text(call.context().getMemoryManager());
    xalanc::DOMServices::getNodeData(node, call.context(), text);
    return {text.c_str(), text.length()};
}

void ExsltText::append(std::u16string_view more) {
    checkLength(m_text.size(), more.size(), m_call);
    m_text.append(more);
}

std::size_t lengthOfCharacter(std::u16string_view text, std::size_t index) {
    const bool isPair =
        U16_IS_LEAD(text[index]) && index + 1 < text.size() && U16_IS_TRAIL(text[index + 1]);
    return isPair ? 2 : 1;
}
