/**
 * @file
 * Transforms by the engine alone, as its documentation shows. The library is compared with it.
 */
#pragma once

#include <map>
#include <string>

struct EngineResult {
    int code;
    std::string output;
    std::string error;
};

/** Transforms a file. Returns the result code, the output and the error message. */
EngineResult runBareEngine(const std::string& source, const std::string& stylesheet,
                           const std::map<std::string, std::string>& params = {});

/** Transforms a file and returns the output. Fails the test if the transform fails. */
std::string bareEngineTransform(const std::string& source, const std::string& stylesheet,
                                const std::map<std::string, std::string>& params = {});
