#include "worker/Request.h"

#include "base/Json.h"
#include "files/ErrorJson.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <utility>

#include <rapidjson/encodedstream.h>
#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

namespace {

/** Takes what the parser finds; goes on after an error, as the id may come later. */
class RequestReader {
public:
    using Size = rapidjson::SizeType;

    explicit RequestReader(Request& request) : m_request(request) {}

    bool Null() {
        return take("null", [](IdWriter& id) { id.Null(); });
    }
    bool Bool(bool value) {
        if (isParam()) {
            addParam({m_name, Request::Param::Kind::Boolean, "", 0, value});
            return true;
        }
        return take("a boolean", [value](IdWriter& id) { id.Bool(value); });
    }
    bool RawNumber(const char* text, Size length, bool /*copy*/) {
        if (isParam()) {
            double number = 0;
            const auto result = std::from_chars(text, text + length, number);
            if (result.ec != std::errc()) {
                fail("the number of '" + m_name + "' is out of range");
            }
            addParam({m_name, Request::Param::Kind::Number, "", number, false});
            return true;
        }
        return take("a number",
                    [&](IdWriter& id) { id.RawValue(text, length, rapidjson::kNumberType); });
    }
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(std::int64_t) { return false; }
    bool Uint64(std::uint64_t) { return false; }
    bool Double(double) { return false; }
    bool String(const char* text, Size length, bool /*copy*/) {
        const std::string value(text, length);
        if (isParam()) {
            addParam({m_name, Request::Param::Kind::Text, value, 0, false});
            return true;
        }
        if (m_depth == 1 && m_field != "id") {
            if (std::optional<std::string>* const field = fieldOf(m_field)) {
                *field = value;
                return true;
            }
        }
        return take("text", [&](IdWriter& id) { id.String(text, length); });
    }
    bool StartObject() {
        ++m_depth;
        if (m_depth == 1 || (m_depth == 2 && m_field == "params")) {
            return true;
        }
        return take(
            "an object", [](IdWriter& id) { id.StartObject(); }, 1);
    }
    bool Key(const char* text, Size length, bool /*copy*/) {
        const std::string name(text, length);
        if (m_depth == 1) {
            beginField(name);
        } else if (m_depth == 2 && m_field == "params") {
            m_name = name;
        } else if (m_field == "id") {
            m_id.Key(text, length);
        }
        return true;
    }
    bool EndObject(Size /*members*/) {
        if (m_depth > 1 && m_field == "id") {
            m_id.EndObject();
        }
        --m_depth;
        endValue();
        return true;
    }
    bool StartArray() {
        ++m_depth;
        return take(
            "an array", [](IdWriter& id) { id.StartArray(); }, 1);
    }
    bool EndArray(Size /*elements*/) {
        if (m_depth > 1 && m_field == "id") {
            m_id.EndArray();
        }
        --m_depth;
        endValue();
        return true;
    }

private:
    using IdWriter = rapidjson::Writer<rapidjson::StringBuffer>;

    void fail(const std::string& text) {
        if (m_request.error.empty()) {
            m_request.error = text;
        }
    }

    std::optional<std::string>* fieldOf(const std::string& name) {
        return name == "xml"          ? &m_request.xml
               : name == "file"       ? &m_request.file
               : name == "stylesheet" ? &m_request.stylesheet
               : name == "output"     ? &m_request.output
                                      : nullptr;
    }

    void beginField(const std::string& name) {
        m_field = name;
        if (!fieldOf(name) && name != "id" && name != "params") {
            fail("there is no field '" + name + "'");
        } else if (std::find(m_fields.begin(), m_fields.end(), name) != m_fields.end()) {
            fail("the field '" + name + "' is there twice");
        }
        m_fields.push_back(name);
    }

    bool isParam() const { return m_depth == 2 && m_field == "params"; }
    void addParam(Request::Param param) {
        m_request.params.push_back(std::move(param));
        m_name.clear();
    }

    /** A value that belongs to the id, or is not allowed where it stands. */
    template <typename Write>
    bool take(const char* what, Write write, int opened = 0) {
        if (m_depth - opened == 0) {
            fail("a request is an object, and not " + std::string(what));
        } else if (m_field == "id" && std::count(m_fields.begin(), m_fields.end(), "id") == 1) {
            write(m_id);
            endValue();
        } else if (fieldOf(m_field) || m_field == "params") {
            fail("the value of '" + (m_name.empty() ? m_field : m_name) + "' cannot be " + what);
        }
        return true;
    }
    /** The id is there when it is whole. */
    void endValue() {
        if (m_depth == 1 && m_field == "id" && m_idText.GetSize() != 0) {
            m_request.id.assign(m_idText.GetString(), m_idText.GetSize());
        }
    }

    Request& m_request;
    int m_depth = 0;
    std::string m_field;
    std::vector<std::string> m_fields;
    /** Of a parameter. */
    std::string m_name;
    rapidjson::StringBuffer m_idText;
    IdWriter m_id{m_idText};
};

} // namespace

Request parseRequest(const std::string& line) {
    using rapidjson::MemoryStream;
    Request request;
    RequestReader reader(request);
    MemoryStream bytes(line.data(), line.size());
    rapidjson::EncodedInputStream<rapidjson::UTF8<>, MemoryStream> stream(bytes);
    rapidjson::Reader parser;
    constexpr unsigned FLAGS = rapidjson::kParseIterativeFlag |
                               rapidjson::kParseValidateEncodingFlag |
                               rapidjson::kParseNumbersAsStringsFlag;
    const auto result = parser.Parse<FLAGS>(stream, reader);
    // To the parser a NUL is the end.
    const auto nul = line.find('\0');
    if (result.IsError() || nul != std::string::npos) {
        const std::size_t place = result.IsError() ? result.Offset() : nul;
        request.error = "no JSON, at byte " + std::to_string(place + 1) + ": " +
                        (result.IsError() ? GetParseError_En(result.Code()) : "U+0000");
    }
    if (request.error.empty() && request.xml.has_value() == request.file.has_value()) {
        request.error = "one of the fields 'xml' and 'file' is needed";
    }
    return request;
}

template <typename Add>
std::string Answer::line(double milliseconds, Add add) const {
    JsonText json;
    json.begin();
    json.raw("id", m_id);
    add(json);
    json.milliseconds(milliseconds);
    json.name("messages");
    json.writer().StartArray();
    for (const vexa::Diagnostic& message : m_messages) {
        json.begin();
        addTextAndPlace(json, message.text, message.where);
        json.end();
    }
    json.writer().EndArray();
    json.end();
    return json.text() + "\n";
}

std::string Answer::result(const std::string& text, double milliseconds) const {
    return line(milliseconds, [&](JsonText& json) { json.member("result", text); });
}

std::string Answer::output(const std::string& name, double milliseconds) const {
    return line(milliseconds, [&](JsonText& json) { json.member("output", name); });
}

std::string Answer::error(const vexa::Error& error, double milliseconds) const {
    return line(milliseconds, [&](JsonText& json) { addError(json, error); });
}

std::string Answer::error(const std::string& kind, const std::string& text,
                          double milliseconds) const {
    return line(milliseconds, [&](JsonText& json) { addError(json, kind, text, {}); });
}
