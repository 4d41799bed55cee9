#include "base/Json.h"

#include <cmath>

#include <unicode/unistr.h>

void JsonText::string(const std::string& text) {
    std::string valid;
    icu::UnicodeString::fromUTF8(text).toUTF8String(valid);
    m_writer.String(valid.data(), static_cast<rapidjson::SizeType>(valid.size()));
}

void JsonText::milliseconds(double value) {
    name("milliseconds");
    m_writer.Double(std::round(value * 1000) / 1000);
}
