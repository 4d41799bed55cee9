#include "worker/StylesheetCache.h"

#include "xslt/Uri.h"

#include <algorithm>
#include <ctime>
#include <sys/stat.h>

vexa::Stylesheet StylesheetCache::get(const std::string& name) {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const Entry& entry) { return entry.name == name; });
    if (found != m_entries.end() && isUpToDate(*found)) {
        m_entries.splice(m_entries.begin(), m_entries, found);
        return m_entries.front().stylesheet;
    }
    if (found != m_entries.end()) {
        m_entries.erase(found);
    }
    m_entries.push_front(compile(name));
    if (m_entries.size() > MOST) {
        m_entries.pop_back();
    }
    return m_entries.front().stylesheet;
}

StylesheetCache::FileState StylesheetCache::stateOf(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return {};
    }
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec};
}

bool StylesheetCache::isUpToDate(const Entry& entry) {
    return !entry.isDoubtful &&
           std::all_of(entry.modules.begin(), entry.modules.end(),
                       [](const Module& module) { return stateOf(module.path) == module.state; });
}

StylesheetCache::Entry StylesheetCache::compile(const std::string& name) const {
    timespec begin{};
    clock_gettime(CLOCK_REALTIME_COARSE, &begin); // the clock of files
    Entry entry{name, m_compile(name), {}, false};
    for (const std::string& uri : entry.stylesheet.modules()) {
        if (const auto path = pathOfFileUri(uri)) {
            entry.modules.push_back({*path, stateOf(*path)});
            const auto& [device, number, size, seconds, nanoseconds] = entry.modules.back().state;
            entry.isDoubtful =
                entry.isDoubtful || std::pair(seconds, nanoseconds) >=
                                        std::pair<std::int64_t, long>(begin.tv_sec, begin.tv_nsec);
        }
    }
    return entry;
}
