/**
 * @file
 * Files that appear when they are whole.
 */
#pragma once

#include <vexa/xslt/Error.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>

struct stat;

/** The file that a symbolic link names, also where it is not there yet. */
std::filesystem::path followLinks(std::filesystem::path path);

/**
 * A file that appears, or replaces another, when it is whole. Until then it has no name, so that
 * nothing is left behind however the process ends; where a file system has no such files, it has a
 * temporary name. An existing file keeps its permissions. What is no regular file is written to
 * directly.
 */
class AtomicFile {
public:
    /** Throws an exception that tells why the file cannot be written; it never returns. */
    using Fail = std::function<void(std::string text, const vexa::Location& where)>;

    /** @throws what fail throws */
    AtomicFile(const std::filesystem::path& path, Fail fail);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    ~AtomicFile();

    /** To be polled where it is no regular file. */
    int descriptor() const { return m_file; }
    /** @throws what fail throws */
    void write(const char* bytes, std::size_t size);
    /** Puts the file in its place. @throws what fail throws */
    void commit();

private:
    void openTemporary();
    void takeAttributes(const struct stat& original) const;
    void giveName();
    void fail(const char* what) const;

    std::filesystem::path m_path;
    const Fail m_fail;
    std::filesystem::path m_temporary;
    int m_file = -1;
    bool m_hasNoName = false;
};
