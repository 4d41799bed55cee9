/**
 * @file
 * Which file a reason that the library gives is about.
 */
#pragma once

#include "Source.h"

#include <string>

/** The documents of one transform, under the names that the user gave them. */
struct TransformDocuments {
    const InputName& stylesheet;
    const Source& source;
    /** What the user calls the place of the result. */
    std::string output;
    /** Where the result is really written; empty if that is no file. */
    std::string writePath;
};

constexpr const char* STANDARD_OUTPUT = "standard output";

/**
 * The file that the reason is about.
 *
 * @param isAboutSource whether the engine told that the source could not be parsed
 */
std::string failedFile(const std::string& reason, const TransformDocuments& documents,
                       bool isAboutSource);

/**
 * The reason for people: with the user's name for the result in place of the path it is written to,
 * and with the words for an error number of the operating system.
 */
std::string readableReason(std::string reason, const TransformDocuments& documents);
