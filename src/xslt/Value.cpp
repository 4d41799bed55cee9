#include <vexa/xslt/Value.h>

#include "xslt/DocumentData.h"
#include "xslt/NodeOrder.h"
#include "xslt/NumberText.h"

#include <vexa/xslt/Error.h>

#include <cmath>
#include <utility>
#include <variant>

namespace vexa {

struct Value::Data {
    /** In the order of the types. */
    std::variant<std::string, double, bool, std::vector<Node>> value;
};

Value::Value(std::string text) : m_data(std::make_shared<const Data>(Data{std::move(text)})) {}

Value::Value(std::string_view text) : Value(std::string(text)) {}

Value::Value(const char* text)
    : Value(text ? std::string(text)
                 : throw Error(ErrorKind::Usage, "the text is a null pointer")) {}

Value::Value(bool boolean) : m_data(std::make_shared<const Data>(Data{boolean})) {}

Value::Value(Tag /*tag*/, double number) : m_data(std::make_shared<const Data>(Data{number})) {}

Value::Value(std::vector<Node> nodes)
    : m_data(std::make_shared<const Data>(Data{inDocumentOrder(std::move(nodes))})) {}

const Value::Data& Value::data() const {
    if (!m_data) {
        throw Error(ErrorKind::Usage, "the value is empty");
    }
    return *m_data;
}

Value::Type Value::type() const {
    return static_cast<Type>(data().value.index());
}

std::string Value::string() const {
    switch (type()) {
    case Type::String:
        return std::get<std::string>(data().value);
    case Type::Number:
        return numberText(std::get<double>(data().value));
    case Type::Boolean:
        return std::get<bool>(data().value) ? "true" : "false";
    default:
        const auto& nodes = std::get<std::vector<Node>>(data().value);
        return nodes.empty() ? std::string() : nodes.front().string();
    }
}

double Value::number() const {
    switch (type()) {
    case Type::Number:
        return std::get<double>(data().value);
    case Type::Boolean:
        return std::get<bool>(data().value) ? 1 : 0;
    default:
        return textNumber(string());
    }
}

bool Value::boolean() const {
    switch (type()) {
    case Type::String:
        return !std::get<std::string>(data().value).empty();
    case Type::Number: {
        const double number = std::get<double>(data().value);
        return number != 0 && !std::isnan(number);
    }
    case Type::Boolean:
        return std::get<bool>(data().value);
    default:
        return !std::get<std::vector<Node>>(data().value).empty();
    }
}

const std::vector<Node>& Value::nodes() const& {
    if (const auto* const nodes = std::get_if<std::vector<Node>>(&data().value)) {
        return *nodes;
    }
    throw Error(ErrorKind::Usage, "the value is no node-set");
}

std::vector<Node> Value::nodes() && {
    return std::as_const(*this).nodes();
}

} // namespace vexa
