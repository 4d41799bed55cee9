#include "FileNames.h"

#include "Failure.h"
#include "Suggestion.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

/** Schemes are the same in capitals. */
bool isUri(const std::string& argument) {
    for (const char* scheme : {"file:/", "http://", "https://", "ftp://"}) {
        if (strncasecmp(argument.c_str(), scheme, std::strlen(scheme)) == 0) {
            return true;
        }
    }
    return false;
}

/** Only what means something else in a URI is escaped, so that messages stay readable. */
std::string escapeForUri(const std::string& path) {
    constexpr const char* HEX = "0123456789ABCDEF";
    std::string escaped;
    for (const char c : path) {
        if (c == '%' || c == '#' || c == '?' || c == '\\') {
            escaped += '%';
            escaped += HEX[c / 16];
            escaped += HEX[c % 16];
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::string uriOfFile(const std::string& name) {
    std::error_code error;
    const fs::path path = fs::absolute(name, error);
    if (name.empty() || error) {
        throw Failure(name.empty() ? "''" : name,
                      name.empty() ? "an empty name is no file" : error.message());
    }
    return "file://" + escapeForUri(path.string());
}

std::string unescape(const std::string& text) {
    std::string plain;
    for (std::string::size_type i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            plain += static_cast<char>(std::strtol(text.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

/** A name that would reach into the terminal must not come from a folder into a message. */
bool isPrintable(const std::string& name) {
    return std::none_of(name.begin(), name.end(),
                        [](unsigned char c) { return c < ' ' || c == 0x7F; });
}

/** The names of files in a folder, not of all if there are very many; none if it is unreadable. */
std::vector<std::string> filesIn(const fs::path& folder) {
    constexpr std::size_t MOST_NAMES = 10'000;
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder.empty() ? "." : folder, error), end;
         !error && entry != end && names.size() < MOST_NAMES; entry.increment(error)) {
        std::error_code ignored;
        std::string name = entry->path().filename().string();
        if (isPrintable(name) && entry->is_regular_file(ignored)) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

/** A file of a nearly equal name in the same folder, written as the missing one was. */
std::string nearestFile(const fs::path& missing) {
    const std::string name =
        nearestName(missing.filename().string(), filesIn(missing.parent_path()));
    return name.empty() ? name : (missing.parent_path() / name).string();
}

} // namespace

InputName::InputName(std::string argument)
    : m_strArgument(std::move(argument)), m_bFile(!isUri(m_strArgument)),
      m_strUri(m_bFile ? uriOfFile(m_strArgument) : m_strArgument) {}

bool InputName::isLocal() const {
    return strncasecmp(m_strUri.c_str(), "file:", 5) == 0;
}

I18NString InputName::forEngine() const {
    I18NString text(m_strUri.c_str());
    if (text.c_str() != m_strUri) {
        throw Failure(m_strArgument, std::string("the name or its folder's name is not valid ") +
                                         I18NGetPlatformDefaultEncoding() +
                                         " text, which the engine needs");
    }
    return text;
}

void InputName::checkReadable() const {
    if (!isLocal()) {
        return;
    }
    const std::string path = displayName(m_strUri);
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || access(path.c_str(), R_OK) != 0) {
        const int error = errno;
        const bool isMissing = error == ENOENT && m_bFile;
        throw Failure(m_strArgument, systemReason(error) +
                                         (isMissing ? didYouMean(nearestFile(m_strArgument)) : ""));
    }
    if (S_ISDIR(status.st_mode)) {
        throw Failure(m_strArgument, systemReason(EISDIR));
    }
}

bool InputName::isSystemId(const std::string& systemId) const {
    return displayName(systemId) == displayName(m_strUri);
}

std::string displayName(const std::string& systemId) {
    for (const char* prefix : {"file:///", "file:/"}) {
        if (strncasecmp(systemId.c_str(), prefix, std::strlen(prefix)) == 0) {
            return unescape(systemId.substr(std::string(prefix).size() - 1));
        }
    }
    return systemId;
}
