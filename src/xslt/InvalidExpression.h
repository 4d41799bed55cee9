/**
 * @file
 * Expressions that are errors only where they are evaluated.
 */
#pragma once

#include <string>
#include <string_view>

#include <xalanc/PlatformSupport/PrefixResolver.hpp>
#include <xalanc/XalanDOM/XalanDOMString.hpp>

/** Resolves the prefix of a call that stands for an expression that cannot be compiled. */
class InvalidExpression : public xalanc::PrefixResolver {
public:
    /** Of a function that nobody has. */
    static constexpr std::u16string_view NAMESPACE = u"urn:vexa:invalid-expression";

    explicit InvalidExpression(xercesc::MemoryManager& memory);

    /** The call. Its argument is the cause. */
    static std::string callFor(std::string cause);

    const xalanc::XalanDOMString*
    getNamespaceForPrefix(const xalanc::XalanDOMString& /*prefix*/) const override {
        return &m_namespace;
    }
    const xalanc::XalanDOMString& getURI() const override { return m_namespace; }

private:
    const xalanc::XalanDOMString m_namespace;
};
