#include "files/DocumentFolder.h"

#include "files/OutputPlace.h"
#include "xslt/Uri.h"

#include <vexa/xslt/Error.h>

#include <algorithm>
#include <system_error>

namespace fs = std::filesystem;

namespace {

bool isBelow(const fs::path& folder, const fs::path& place) {
    const auto [end, ignored] =
        std::mismatch(folder.begin(), folder.end(), place.begin(), place.end());
    return end == folder.end();
}

fs::path realPlace(const fs::path& path) {
    std::error_code failure;
    const fs::path real = fs::weakly_canonical(outputPlace(path), failure);
    return failure ? fs::path() : real;
}

/** Empty where it is not there. */
fs::path realFolder(const fs::path& path) {
    std::error_code failure;
    return fs::canonical(path, failure);
}

vexa::Error denied(const std::string& href, const std::string& reason) {
    return {vexa::ErrorKind::Denied, "the document '" + href + "' may not be written: " + reason};
}

} // namespace

DocumentFolder::DocumentFolder(const fs::path& folder)
    : m_given(folder), m_folder(realFolder(folder)) {}

vexa::Output DocumentFolder::output(const std::string& href, const std::string& base) const {
    const auto enclosing = pathOfFileUri(base);
    const bool isInside = enclosing && isBelow(m_folder, realPlace(*enclosing));
    const auto asked = pathOfFileUri(resolveUri(href, isInside ? base : fileUri(m_folder) + "/"));
    const fs::path place = asked ? realPlace(*asked) : fs::path();
    if (m_folder.empty() || !isBelow(m_folder, place) || place == m_folder) {
        throw denied(href, "it is not below the folder " + m_given.string());
    }
    std::error_code ignored;
    fs::create_directories(place.parent_path(), ignored);
    if (fs::exists(place, ignored) && !fs::is_regular_file(place, ignored)) {
        throw denied(href, "it is no regular file");
    }
    return vexa::Output::file(place);
}
