/**
 * @file
 * Compiled stylesheets that are used again.
 */
#pragma once

#include <vexa/xslt/Stylesheet.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <list>
#include <string>
#include <tuple>
#include <vector>

/** The stylesheets that were used last. One whose modules have changed is compiled again. */
class StylesheetCache {
public:
    using Compile = std::function<vexa::Stylesheet(const std::string& name)>;

    explicit StylesheetCache(Compile compile) : m_compile(std::move(compile)) {}

    /** @throws what compiling throws */
    vexa::Stylesheet get(const std::string& name);

private:
    static constexpr std::size_t MOST = 64;

    /** Device, number, size, and seconds and nanoseconds of the last change; zeros for no file. */
    using FileState = std::tuple<std::uint64_t, std::uint64_t, std::int64_t, std::int64_t, long>;
    struct Module {
        std::filesystem::path path;
        FileState state;
    };
    struct Entry {
        std::string name;
        vexa::Stylesheet stylesheet;
        std::vector<Module> modules;
        /** A module may have changed while it was read. */
        bool isDoubtful;
    };

    static FileState stateOf(const std::filesystem::path& path);
    static bool isUpToDate(const Entry& entry);
    Entry compile(const std::string& name) const;

    Compile m_compile;
    /** The one that was used last first. */
    std::list<Entry> m_entries;
};
