#include "testing/TestSearch.h"

#include "base/Suggestion.h"
#include "files/InputArgument.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace fs = std::filesystem;

namespace {

bool isTestFile(const fs::directory_entry& entry) {
    constexpr std::string_view SUFFIX = ".tests.xml";
    const std::string name = entry.path().filename().string();
    std::error_code ignored;
    return name.size() > SUFFIX.size() &&
           name.compare(name.size() - SUFFIX.size(), SUFFIX.size(), SUFFIX) == 0 &&
           entry.is_regular_file(ignored);
}

void search(const fs::path& folder, FoundTestFiles& found) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) {
            search(entry->path(), found);
        } else if (isTestFile(*entry)) {
            found.names.push_back(entry->path().lexically_normal().string());
        }
    }
    if (error) {
        found.failures.emplace_back(folder.string(), error.message());
    }
}

} // namespace

FoundTestFiles findTestFiles(const std::string& path) {
    if (path.empty()) {
        throw UsageError("''", "empty file name");
    }
    std::error_code error;
    if (!fs::exists(path, error)) {
        throw Failure(path, systemMessage(error ? error.value() : ENOENT) +
                                didYouMean(nearestFile(path)));
    }
    if (!fs::is_directory(path, error)) {
        return {{path}, {}};
    }
    FoundTestFiles found;
    search(path, found);
    if (found.names.empty() && found.failures.empty()) {
        throw Failure(path, "there is no file *.tests.xml in this folder");
    }
    std::sort(found.names.begin(), found.names.end());
    return found;
}
