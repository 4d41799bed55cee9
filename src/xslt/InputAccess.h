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
    /** Absolute. */
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

    /** @throws Error: Usage for an input that was moved from */
    static Input::Data& data(const Input& input);
};

using InputData = InputAccess::Data;

} // namespace vexa
