/**
 * @file
 * Stylesheet parameters on the command line.
 */
#pragma once

#include <string>

struct Parameter {
    enum class Kind { String, Number, Expression };

    Kind kind = Kind::String;
    /** "name" or "{uri}name". */
    std::string name;
    std::string value;
    /** Of a number. */
    double number = 0;
};

/**
 * Reads "NAME=VALUE".
 *
 * @param option as which it is given, for the error
 * @throws UsageError for another form, a name that is none, and a text that is not UTF-8
 */
Parameter parseParameter(const std::string& option, Parameter::Kind kind,
                         const std::string& argument);

/** @throws UsageError where a text of the command line is not UTF-8 */
void requireUtf8(const std::string& argument, const std::string& text);
