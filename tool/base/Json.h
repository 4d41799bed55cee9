/**
 * @file
 * JSON on one line.
 */
#pragma once

#include <string>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

/** Writes one JSON text. Strings that are not UTF-8 get U+FFFD in place of what is wrong. */
class JsonText {
public:
    using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

    JsonText() = default;
    JsonText(const JsonText&) = delete;
    JsonText& operator=(const JsonText&) = delete;

    /** For what is not a string. */
    Writer& writer() { return m_writer; }
    /** Begins an object. */
    void begin() { m_writer.StartObject(); }
    void end() { m_writer.EndObject(); }
    /** The name of a member; its value follows. */
    void name(const char* name) { m_writer.Key(name); }
    void string(const std::string& text);
    void member(const char* key, const std::string& text) {
        name(key);
        string(text);
    }
    void member(const char* key, bool value) {
        name(key);
        m_writer.Bool(value);
    }
    void member(const char* key, std::size_t value) {
        name(key);
        m_writer.Uint64(value);
    }
    /** With three digits behind the point. */
    void milliseconds(double value);
    /** Text that is JSON already. */
    void raw(const char* key, const std::string& json) {
        name(key);
        m_writer.RawValue(json.data(), json.size(), rapidjson::kObjectType);
    }
    std::string text() const { return {m_buffer.GetString(), m_buffer.GetSize()}; }

private:
    rapidjson::StringBuffer m_buffer;
    Writer m_writer{m_buffer};
};
