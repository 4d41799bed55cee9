/**
 * @file
 * Files that are written beside the result.
 */
#pragma once

#include <string>

/** The file that the name of a report on the command line stands for: "-" is standard output. */
std::string reportPath(const std::string& name);

/** Writes a report, atomically. @throws vexa::Error: Output */
void writeReport(const std::string& name, const std::string& text);
