#include "files/InputArgument.h"

#include "base/Errors.h"
#include "base/Suggestion.h"
#include "xslt/Uri.h"

#include <algorithm>
#include <iostream>
#include <system_error>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

/** Only with these schemes, so that a file may have a colon in its name. */
bool isUri(const std::string& argument) {
    const std::string scheme = uriScheme(argument);
    const std::string rest = scheme.empty() ? "" : argument.substr(scheme.size() + 1);
    return (scheme == "file" && rest.rfind('/', 0) == 0) ||
           ((scheme == "http" || scheme == "https" || scheme == "ftp") && rest.rfind("//", 0) == 0);
}

std::string uriOfFile(const std::string& name) {
    if (name.empty()) {
        throw UsageError("''", "empty file name");
    }
    std::error_code error;
    const fs::path path = fs::absolute(name, error);
    if (error) {
        throw Failure(name, error.message());
    }
    return fileUri(path);
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

} // namespace

std::optional<FileId> fileId(const fs::path& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)
               ? std::optional<FileId>({status.st_dev, status.st_ino})
               : std::nullopt;
}

InputArgument::InputArgument(std::string argument)
    : m_strName(std::move(argument)), m_bUri(isUri(m_strName)),
      m_strUri(m_bUri              ? m_strName
               : isStandardInput() ? ""
                                   : uriOfFile(m_strName)) {}

std::optional<fs::path> InputArgument::path() const {
    if (m_bUri) {
        return pathOfFileUri(m_strUri);
    }
    return isStandardInput() ? std::nullopt : std::optional<fs::path>(m_strName);
}

std::optional<FileId> InputArgument::id() const {
    const auto file = path();
    return file ? fileId(*file) : std::nullopt;
}

vexa::Input InputArgument::input() const {
    return isStandardInput() ? vexa::Input::stream(std::cin)
           : m_bUri          ? vexa::Input::uri(m_strUri)
                             : vexa::Input::file(m_strName);
}

std::string nearestFile(const fs::path& missing) {
    std::error_code ignored;
    if (fs::exists(missing, ignored)) {
        return "";
    }
    const std::string name =
        nearestName(missing.filename().string(), filesIn(missing.parent_path()));
    return name.empty() ? name : (missing.parent_path() / name).string();
}
