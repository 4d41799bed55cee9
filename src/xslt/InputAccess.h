/**
 * @file
 * The inside of an Input.
 */
#pragma once

#include <vexa/xslt/Input.h>

#include <atomic>

namespace vexa {

struct Input::Data {
    enum class Kind { File, Text, Stream, Uri };

    Kind kind;
    /** Of a file: the "file" URI. */
    std::string uri;
    std::filesystem::path path;
    /** What `text` views, unless it is the host's. */
    std::string ownText;
    std::string_view text;
    std::istream* stream = nullptr;
    std::atomic<bool> isStreamUsed{false};
};

class InputAccess {
public:
    using Data = Input::Data;

    static Input::Data& data(const Input& input) { return *input.m_data; }
};

using InputData = InputAccess::Data;

} // namespace vexa
