/**
 * @file
 * The names by which files appear in messages.
 */
#pragma once

#include "files/InputArgument.h"

#include <map>
#include <string>
#include <utility>

class FileNames {
public:
    /** From now on the document appears under the name that the user gave it. */
    void add(const InputArgument& argument);

    /** What is at fault where an error has no URI: "-", "expression". @return what was before */
    std::string setDefault(std::string name) {
        return std::exchange(m_strDefault, std::move(name));
    }

    /**
     * The name for a URI: as the user gave it; of another file its path, relative where it is below
     * the working directory; any other URI as it is.
     */
    std::string nameOf(const std::string& uri) const;

private:
    std::map<std::string, std::string> m_byUri;
    std::string m_strDefault = STANDARD_STREAM;
};
