/**
 * @file
 * Values of expressions, parameters and functions.
 */
#pragma once

#include <vexa/xslt/Document.h>
#include <vexa/xslt/Export.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace vexa {

/** A string, a number, a boolean or a node-set, converted as in XPath 1.0. Immutable. */
class VEXA_XSLT_EXPORT Value {
public:
    enum class Type { String, Number, Boolean, NodeSet };

    /** A string of UTF-8. A NUL in it is refused where the value is used. */
    Value(std::string text);      // NOLINT(google-explicit-constructor): hosts pass plain values
    Value(std::string_view text); // NOLINT(google-explicit-constructor)
    /** @throws Error: Usage for a null pointer */
    Value(const char* text);        // NOLINT(google-explicit-constructor)
    Value(bool boolean);            // NOLINT(google-explicit-constructor)
    Value(std::vector<Node> nodes); // NOLINT(google-explicit-constructor)
    template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number> &&
                                                           !std::is_same_v<Number, bool>>>
    Value(Number number) // NOLINT(google-explicit-constructor)
        : Value(Tag(), static_cast<double>(number)) {}

    Type type() const;
    std::string string() const;
    double number() const;
    bool boolean() const;
    /** In document order, each once. @throws Error: Usage if the value is no node-set */
    const std::vector<Node>& nodes() const&;
    std::vector<Node> nodes() &&;

private:
    struct Tag {};
    Value(Tag tag, double number);
    struct VEXA_XSLT_LOCAL Data;
    VEXA_XSLT_LOCAL const Data& data() const;
    std::shared_ptr<const Data> m_data;
};

} // namespace vexa
