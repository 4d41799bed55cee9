/**
 * @file
 * What an instruction says of a further result.
 */
#pragma once

#include <map>
#include <string>

#include <xalanc/XalanDOM/XalanDOMString.hpp>

/** The values of the attributes, by their names. */
class ResultAttributes {
public:
    explicit ResultAttributes(xercesc::MemoryManager& memory) : m_none(memory) {}

    xalanc::XalanDOMString& operator[](const std::u16string& name) {
        return m_values.try_emplace(name, m_none, m_none.getMemoryManager()).first->second;
    }
    /** Empty where there is no such attribute. */
    const xalanc::XalanDOMString& get(const std::u16string& name) const {
        const auto found = m_values.find(name);
        return found == m_values.end() ? m_none : found->second;
    }
    bool isYes(const std::u16string& name, bool isDefault = false) const {
        const auto& value = get(name);
        return value.empty() ? isDefault : value == u"yes";
    }

private:
    xalanc::XalanDOMString m_none;
    std::map<std::u16string, xalanc::XalanDOMString> m_values;
};
