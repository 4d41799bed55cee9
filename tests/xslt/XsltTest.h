/**
 * @file
 * Short ways to use the interface in tests.
 */
#pragma once

#include "support/TestFiles.h"

#include <vexa/xslt.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace vexa {

inline std::ostream& operator<<(std::ostream& stream, ErrorKind kind) {
    static const char* const NAMES[] = {"Parse",  "Compile", "Transform", "Terminated", "Input",
                                        "Output", "Denied",  "Limit",     "Cancelled",  "Usage"};
    return stream << NAMES[static_cast<int>(kind)];
}

} // namespace vexa

/** The error that ends an operation. */
template <typename Operation>
vexa::Error failureOf(Operation operation) {
    try {
        operation();
    } catch (const vexa::Error& error) {
        return error;
    }
    ADD_FAILURE() << "The operation succeeded.";
    return {vexa::ErrorKind::Usage, "The operation succeeded."};
}

/** Expects an error of a kind whose text has a piece. */
template <typename Operation>
void expectFailure(Operation operation, vexa::ErrorKind kind, const std::string& piece) {
    const vexa::Error error = failureOf(operation);
    EXPECT_EQ(error.kind(), kind) << error.what();
    EXPECT_NE(error.text().find(piece), std::string::npos) << error.what();
}

/** "URI:LINE:COLUMN" */
inline std::string asText(const vexa::Location& where) {
    return where.uri + ":" + std::to_string(where.line) + ":" + std::to_string(where.column);
}

inline vexa::Document parsed(const std::string& text, const std::string& uri = {}) {
    return vexa::Document::parse(vexa::Input::text(text, uri));
}

/** A stylesheet with the given top-level content. */
inline vexa::Stylesheet compiled(const std::string& content, const vexa::Options& options = {}) {
    return vexa::Stylesheet::compile(vexa::Input::text(stylesheet(content)), options);
}

/** A stylesheet with one template, for the root node. */
inline vexa::Stylesheet compiledRootTemplate(const std::string& content) {
    return vexa::Stylesheet::compile(vexa::Input::text(stylesheetWithRootTemplate(content)));
}

/** What a template for the root node gives. */
inline std::string transformed(const std::string& content, const std::string& source = "<a/>",
                               const vexa::Options& options = {}) {
    return vexa::Transformation(compiledRootTemplate(content), options)
        .toString(vexa::Input::text(source));
}

/** A stylesheet that copies its source. */
inline std::string copyingStylesheet() {
    return stylesheetWithRootTemplate("<xsl:copy-of select='.'/>");
}
