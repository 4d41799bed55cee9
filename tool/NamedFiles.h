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
    explicit NamedFiles(const Source& source, std::string outputName = STANDARD_STREAM)
        : sourceName(source.name()), output(std::move(outputName)) {
        if (source.document()) {
            inputs.push_back(source.document());
        }
    }

    /** Source and stylesheets; borrowed. */
    std::vector<const InputName*> inputs;
    /** What the user calls the source. */
    std::string sourceName;
    std::string output;
};
