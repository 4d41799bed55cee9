/**
 * @file
 * A process that reaches only the files that it needs.
 */
#pragma once

#include <filesystem>
#include <vector>

/** The places that stay within reach. */
struct SandboxPlaces {
    /** Files that are read. */
    std::vector<std::filesystem::path> inputs;
    /** Folders that are read, with all that is below them. */
    std::vector<std::filesystem::path> folders;
    /** Files that are written or replaced, and folders in which files are. */
    std::vector<std::filesystem::path> outputs;
};

/**
 * Gives up all other files, for good; where the kernel can refuse connections, these too.
 *
 * @throws Failure if the kernel cannot do this
 */
void enterSandbox(const SandboxPlaces& places);
