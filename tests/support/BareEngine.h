/**
 * @file
 * The engine used directly, as its own documentation shows it: what the facade is compared with.
 */
#pragma once

#include <map>
#include <string>

struct EngineResult {
    int code;
    std::string output;
    std::string error;
};

/** Transforms a file, and tells what came of it. */
EngineResult runBareEngine(const std::string& source, const std::string& stylesheet,
                           const std::map<std::string, std::string>& params = {});

/** Transforms a file and gives the result's bytes; fails the test if the engine reports a failure.
 */
std::string bareEngineTransform(const std::string& source, const std::string& stylesheet,
                                const std::map<std::string, std::string>& params = {});
