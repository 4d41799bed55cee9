#include "files/ErrorJson.h"

#include "files/ErrorText.h"

const char* nameOf(vexa::ErrorKind kind) {
    switch (kind) {
    case vexa::ErrorKind::Parse:
        return "Parse";
    case vexa::ErrorKind::Compile:
        return "Compile";
    case vexa::ErrorKind::Transform:
        return "Transform";
    case vexa::ErrorKind::Terminated:
        return "Terminated";
    case vexa::ErrorKind::Input:
        return "Input";
    case vexa::ErrorKind::Output:
        return "Output";
    case vexa::ErrorKind::Denied:
        return "Denied";
    case vexa::ErrorKind::Limit:
        return "Limit";
    case vexa::ErrorKind::Cancelled:
        return "Cancelled";
    case vexa::ErrorKind::Usage:
        break;
    }
    return "Usage";
}

void addTextAndPlace(JsonText& json, const std::string& text, const vexa::Location& where) {
    json.member("text", text);
    json.member("uri", where.uri);
    json.member("line", where.line);
    json.member("column", columnOf(where));
}

void addError(JsonText& json, const std::string& kind, const std::string& text,
              const vexa::Location& where) {
    json.name("error");
    json.begin();
    json.member("kind", kind);
    addTextAndPlace(json, text, where);
    json.end();
}

void addError(JsonText& json, const vexa::Error& error) {
    addError(json, nameOf(error.kind()), error.text(), error.where());
}
