/**
 * @file
 * How commands use the library.
 */
#pragma once

#include "base/Timing.h"
#include "cli/RunOptions.h"
#include "files/DocumentFolder.h"
#include "files/FileNames.h"
#include "files/InputArgument.h"

#include <vexa/xslt.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/** The files that a command line names. */
struct NamedFiles {
    std::vector<InputArgument> inputs;
    /** Where results go: a file or a folder; "-" for standard output. */
    std::string output = STANDARD_STREAM;
    /** Files that are written beside it. */
    std::vector<std::string> reports;

    /** The folders of the inputs, each once. */
    std::vector<std::filesystem::path> folders() const;
    /** The folder of the result; empty where it goes to no file. */
    std::filesystem::path outputFolder() const;
};

/** What one process does with the library: the options, the names and the messages of its work. */
class Session {
public:
    /** Prints or sends a message: the text of an xsl:message, or a warning. */
    using Emit = std::function<void(const vexa::Diagnostic&, const std::string& text)>;

    /** @param options borrowed */
    Session(const RunOptions& options, const NamedFiles& files, Emit emit);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /** Messages go elsewhere from now on. */
    void setEmit(Emit emit) { m_emit = std::move(emit); }
    /** The options of an operation. */
    vexa::Options operationOptions();
    FileNames& names() { return m_names; }
    Timing& timing() { return m_timing; }

    vexa::Stylesheet compile(const InputArgument& stylesheet);
    vexa::Document parse(const InputArgument& source);
    /** A run of the stylesheet with the parameters that need no source. */
    vexa::Transformation prepare(const vexa::Stylesheet& stylesheet);
    /** Sets the parameters that are expressions over the source. */
    void setExpressions(vexa::Transformation& run, const vexa::Document& source);
    void transform(vexa::Transformation& run, const InputArgument& source,
                   const vexa::Output& output);
    /** Evaluates over the source, with its prefixes and others. */
    vexa::Value evaluate(const std::string& expression, const vexa::Document& source,
                         const vexa::Namespaces& namespaces);

    /** An error for people, with the line that it is about where that is wanted. */
    std::string describe(const vexa::Error& error) const;

private:
    const RunOptions& m_options;
    Emit m_emit;
    std::vector<std::filesystem::path> m_folders;
    std::optional<DocumentFolder> m_documents;
    FileNames m_names;
    Timing m_timing;
};

/** The place of a result: standard output or a file. @param stream for standard output */
vexa::Output outputTo(const std::string& output, std::ostream& stream);

/**
 * Runs the work of a command, in a child process where the options ask for one.
 *
 * @param blamed the document that is at fault for a crash
 * @return the exit status; errors have been printed
 */
int runSession(const RunOptions& options, const NamedFiles& files, const InputArgument& blamed,
               const std::function<void(Session&)>& work);

/** Keeps this process to the files that are named, where the options ask for that. */
void enterSandboxIfWanted(const RunOptions& options, const NamedFiles& files);

/** @throws UsageError where the output has no name, or two inputs are standard input */
void checkFiles(const NamedFiles& files);
