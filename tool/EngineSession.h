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
