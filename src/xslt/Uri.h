/**
 * @file
 * URIs as RFC 3986 has them.
 */
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/** The absolute "file" URI of a path, percent-encoded. */
std::string fileUri(const std::filesystem::path& path);

/** The path of a "file" URI of this machine; nothing for other URIs. */
std::optional<std::filesystem::path> pathOfFileUri(std::string_view uri);

/** Whether a URI begins with a scheme. */
bool isAbsoluteUri(std::string_view uri);

/**
 * A reference resolved against a base; against the working directory where the base is no absolute
 * URI.
 */
std::string resolveUri(std::string_view reference, std::string_view base);
