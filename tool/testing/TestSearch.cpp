#include "testing/TestSearch.h"

#include "base/Errors.h"
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

} // namespace

std::vector<std::string> findTestFiles(const std::string& path) {
    std::error_code error;
    if (!fs::exists(path, error)) {
        throw Failure(path, systemMessage(error ? error.value() : ENOENT) +
                                didYouMean(nearestFile(path)));
    }
    if (!fs::is_directory(path, error)) {
        return {path};
    }
    std::vector<std::string> names;
    fs::recursive_directory_iterator entry(path, error);
    for (; !error && entry != fs::end(entry); entry.increment(error)) {
        if (isTestFile(*entry)) {
            names.push_back(entry->path().lexically_normal().string());
        }
    }
    if (error) {
        throw Failure(path, error.message());
    }
    if (names.empty()) {
        throw Failure(path, "there is no file *.tests.xml in this folder");
    }
    std::sort(names.begin(), names.end());
    return names;
}
