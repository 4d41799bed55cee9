/**
 * @file
 * The files that a command line names.
 */
#pragma once

#include "Source.h"

#include <string>
#include <utility>
#include <vector>

struct NamedFiles {
    NamedFiles(std::string blamed, std::string outputName)
        : sourceName(std::move(blamed)), output(std::move(outputName)) {}

    explicit NamedFiles(const Source& source, std::string outputName = STANDARD_STREAM)
        : NamedFiles(source.name(), std::move(outputName)) {
        if (source.document()) {
            inputs.push_back(source.document());
        }
    }

    /** Source and stylesheets; borrowed. */
    std::vector<const InputName*> inputs;
    /** What the user calls the source. */
    std::string sourceName;
    /** A file, or the folder that all results go to. */
    std::string output;
};
