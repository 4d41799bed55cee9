/**
 * @file
 * Requests and answers of the command `worker`: JSON, one a line.
 */
#pragma once

#include "cli/Parameter.h"

#include <vexa/xslt/Error.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

/** What one line asks for. */
struct Request {
    struct Param {
        enum class Kind { Text, Number, Boolean };

        std::string name;
        Kind kind;
        std::string text;
        double number;
        bool boolean;
    };

    /** JSON, as it was given. */
    std::string id = "null";
    std::optional<std::string> xml;
    std::optional<std::string> file;
    std::optional<std::string> stylesheet;
    std::optional<std::string> output;
    std::vector<Param> params;
    /** Why it is no request; empty if it is one. */
    std::string error;
};

/** @return with an error for what is no request, and with the `id` if that could be read */
Request parseRequest(const std::string& line);

/** What becomes of a request. */
class Answer {
public:
    explicit Answer(std::string id) : m_id(std::move(id)) {}

    /** A text of xsl:message, or a warning. */
    void addMessage(const vexa::Diagnostic& message) { m_messages.push_back(message); }

    /** A line of JSON, with its newline. */
    std::string result(const std::string& text, double milliseconds) const;
    /** The result is in a file. */
    std::string output(const std::string& name, double milliseconds) const;
    std::string error(const vexa::Error& error, double milliseconds) const;
    std::string error(const std::string& kind, const std::string& text, double milliseconds) const;

private:
    template <typename Add>
    std::string line(double milliseconds, Add add) const;

    std::string m_id;
    std::vector<vexa::Diagnostic> m_messages;
};
