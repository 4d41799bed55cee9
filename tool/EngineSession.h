/**
 * @file
 * What all commands have around their work: the library started, a transformer as the options want
 * it, and the time taken.
 */
#pragma once

#include "CommonOptions.h"
#include "NamedFiles.h"

#include <functional>
#include <string>

/** The library, started for as long as this lives. */
class EngineSession {
public:
    EngineSession();
    EngineSession(const EngineSession&) = delete;
    EngineSession& operator=(const EngineSession&) = delete;
    ~EngineSession();
};

/** What the engine may reach from now on, until it is stopped. @throws Failure */
void reachOnly(const Limits& limits, const NamedFiles& files);

void setParameters(VEXAXslTransformer& transformer, const Parameters& parameters);

/**
 * Makes failures of the engine's exceptions while it still runs: they use its memory, and must not
 * outlive it.
 *
 * @throws Failure
 */
void tellEngineExceptions(const Limits& limits, const std::string& sourceName,
                          const std::function<void()>& work);

/**
 * Runs a command's work with a transformer, within the limits that the options set.
 *
 * @param files the files that the command line names; the source is to blame for a lack of memory
 * @param phase what the work is called in the report of the time
 * @param work  what to do
 * @throws WrongUsage for a wrong parameter, before any work; what the work throws
 */
void runWithTransformer(const CommonOptions& options, const NamedFiles& files,
                        const std::string& phase,
                        const std::function<void(VEXAXslTransformer&)>& work);
