/**
 * @file
 * Exit statuses, and how errors are reported: one line on standard error, an excerpt may follow.
 */
#pragma once

#include <stdexcept>
#include <string>

constexpr int EXIT_DONE = 0;
constexpr int EXIT_FAILED = 1;
constexpr int EXIT_USAGE = 2;

/** Something failed; `name` is the file (or the like) at fault. */
class Failure : public std::runtime_error {
public:
    Failure(const std::string& name, const std::string& cause)
        : std::runtime_error(name + ": " + cause) {}
};

/** The command line is wrong; `name` is the argument at fault. */
class UsageError : public std::runtime_error {
public:
    UsageError(const std::string& name, const std::string& cause)
        : std::runtime_error(name + ": " + cause) {}
};

/** "vexa-xslt: TEXT" and a newline, as it is printed. */
std::string errorLine(const std::string& text);

/** Prints that line on standard error. */
void printError(const std::string& text);

/** Standard error of the program: another descriptor than 2 after silenceSystemLibraries(). */
int errorDescriptor();

/**
 * Leaves standard error to this program's own texts: what system libraries write there when they
 * end the process is discarded from now on.
 */
void silenceSystemLibraries();

/** The text on one line, without white space at its ends, with ? for control characters. */
std::string oneLine(const std::string& text);

/** The lines of a text, with a name before each: "NAME: LINE". */
std::string namedLines(const std::string& name, const std::string& text);

/** What the operating system says of an errno value. */
std::string systemMessage(int errorNumber);
