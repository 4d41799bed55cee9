/**
 * @file
 * A document or stylesheet, as the user named it.
 */
#pragma once

#include <vexa/xslt/Input.h>

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include <sys/types.h>

/** Stands for standard input or standard output on the command line. */
constexpr const char* STANDARD_STREAM = "-";

/** Which file it is, whatever its name. */
using FileId = std::pair<dev_t, ino_t>;

/** Nothing where there is no regular file. */
std::optional<FileId> fileId(const std::filesystem::path& path);

class InputArgument {
public:
    /**
     * @param argument a file name, taken literally; a URI with a scheme that is known; or "-"
     * @throws UsageError for an empty name; Failure where the working directory is gone
     */
    explicit InputArgument(std::string argument);

    /** As it was given. */
    const std::string& name() const { return m_strName; }

    /** A URI that names it in errors; empty for standard input. */
    const std::string& uri() const { return m_strUri; }

    /** The file, by its name or by a file URI; nothing for standard input and other URIs. */
    std::optional<std::filesystem::path> path() const;
    /** Which file that is. */
    std::optional<FileId> id() const;

    bool isStandardInput() const { return m_strName == STANDARD_STREAM; }

    /** Standard input can be read once. */
    vexa::Input input() const;

private:
    std::string m_strName;
    bool m_bUri;
    std::string m_strUri;
};

/** A file of a nearly equal name in the same folder, where the named one is missing; or empty. */
std::string nearestFile(const std::filesystem::path& missing);
