/**
 * @file
 * Files of tests for stylesheets.
 */
#pragma once

#include <vexa/xslt/Value.h>
#include <vexa/xslt/XPath.h>

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/** What a case expects. */
struct Expectation {
    enum class Kind {
        File,    ///< the result is the file of this name, byte by byte
        Xml,     ///< the same, as a tree
        XPath,   ///< this expression is true over the result
        Message, ///< a message contains this text
        Error    ///< the transform ends with an error of this kind
    };

    Kind kind;
    std::string text;
    /** The text of the error contains it. */
    std::string part;
    vexa::XPath expression;
    /** The prefixes of the expression. */
    vexa::Namespaces namespaces;
    /** Other cases expect the file, too. */
    bool isShared = false;

    bool isFile() const { return kind == Kind::File || kind == Kind::Xml; }
    /** For reports. */
    std::string title() const;
};

/** One transform and what is expected of it. */
struct TestCase {
    struct Param {
        std::string name;
        /** An expression is evaluated over the source. */
        std::variant<vexa::Value, vexa::XPath> value;
    };

    std::string name;
    /** On which it begins. */
    std::size_t line = 0;
    /** The name of the file; or the text. */
    std::optional<std::string> source;
    std::string inlineSource;
    std::vector<Param> params;
    std::vector<Expectation> expectations;

    bool expects(Expectation::Kind kind) const;
};

/** A stylesheet and its cases. Names of files are as from the working directory. */
struct TestFile {
    std::string name;
    std::string stylesheet;
    std::vector<TestCase> cases;
};
