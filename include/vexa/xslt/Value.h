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
    /** The four types of XPath 1.0. */
    enum class Type {
        String,  ///< a text in UTF-8
        Number,  ///< a double
        Boolean, ///< true or false
        NodeSet  ///< nodes in document order, each once
    };

    /** A string of UTF-8. A NUL in it is refused where the value is used. */
    Value(std::string text); // NOLINT(google-explicit-constructor): hosts pass plain values
    /** A string of UTF-8, which is copied. */
    Value(std::string_view text); // NOLINT(google-explicit-constructor)
    /** A string of UTF-8, which is copied. @throws Error: Usage for a null pointer */
    Value(const char* text); // NOLINT(google-explicit-constructor)
    /** A boolean. */
    Value(bool boolean); // NOLINT(google-explicit-constructor)
    /** A node-set, which is put into document order. */
    Value(std::vector<Node> nodes); // NOLINT(google-explicit-constructor)
    /** A number, of any arithmetic type. */
    template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number> &&
                                                           !std::is_same_v<Number, bool>>>
    Value(Number number) // NOLINT(google-explicit-constructor)
        : Value(Tag(), static_cast<double>(number)) {}

    /** The type of the value. */
    Type type() const;
    /** The value as a string: a number as XPath writes it, a node-set by its first node. */
    std::string string() const;
    /** The value as a number; NaN for a string that is none. */
    double number() const;
    /** The value as a boolean: false for "", 0, NaN and an empty node-set. */
    bool boolean() const;
    /** In document order, each once. @throws Error: Usage if the value is no node-set */
    const std::vector<Node>& nodes() const&;
    /** The same for a temporary value: a loop over it is safe. */
    std::vector<Node> nodes() &&;

private:
    struct Tag {};
    Value(Tag tag, double number);
    struct VEXA_XSLT_LOCAL Data;
    VEXA_XSLT_LOCAL const Data& data() const;
    std::shared_ptr<const Data> m_data;
};

} // namespace vexa
