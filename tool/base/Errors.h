/**
 * @file
 * How the program tells of a failure: one line on standard error, and an exit status.
 */
#pragma once

#include <stdexcept>
#include <string>

constexpr int EXIT_DONE = 0;
constexpr int EXIT_FAILED = 1;
constexpr int EXIT_USAGE = 2;

/** Something failed; `name` is the file (or the like) that the reason is about. */
class Failure : public std::runtime_error {
public:
    Failure(const std::string& name, const std::string& reason)
        : std::runtime_error(name + ": " + reason) {}
};

/** The command line asks for something that cannot be. */
class WrongUsage : public std::runtime_error {
public:
    WrongUsage(const std::string& name, const std::string& reason)
        : std::runtime_error(name + ": " + reason) {}
};

/** Writes "vexa-xslt: TEXT" as one line to standard error. */
void tellFailure(const std::string& text);

/**
 * Leaves standard error to this program's own texts: what the system libraries write there when
 * they end the process is lost from now on.
 */
void silenceSystemLibraries();

/** The text without blanks at its ends, and with each run of line ends inside as one blank. */
std::string foldLines(const std::string& text);

/** The text with ? for what would reach into a terminal. */
std::string printable(std::string text);

/** What the operating system says of an errno value. */
std::string systemReason(int errorNumber);
