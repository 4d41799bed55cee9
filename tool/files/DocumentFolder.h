/**
 * @file
 * Where further results go.
 */
#pragma once

#include <vexa/xslt/Output.h>

#include <filesystem>
#include <string>

/** A folder below which a stylesheet may write documents, and nowhere else. */
class DocumentFolder {
public:
    /** Where it is not there, nothing is below it. */
    explicit DocumentFolder(const std::filesystem::path& folder);

    /**
     * The place of a document. Folders on the way are made.
     *
     * @param base the URI of the result that it stands in; of one elsewhere the folder takes its
     * place
     * @throws vexa::Error: Denied for what is outside of the folder, or is there and no regular
     * file
     */
    vexa::Output output(const std::string& href, const std::string& base) const;

private:
    std::filesystem::path m_given;
    /** With symbolic links resolved. */
    std::filesystem::path m_folder;
};
