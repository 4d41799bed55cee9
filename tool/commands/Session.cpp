#include "commands/Session.h"

#include "base/Errors.h"
#include "base/Terminal.h"
#include "catalog/ListedCatalogs.h"
#include "files/CatalogAccess.h"
#include "files/ErrorText.h"
#include "files/OutputPlace.h"
#include "files/ReportFile.h"
#include "process/FileLimit.h"
#include "process/IsolatedRun.h"
#include "process/Sandbox.h"

#include <algorithm>
#include <cctype>
#include <iostream>
#include <set>

namespace fs = std::filesystem;

using vexa::Document;
using vexa::ErrorKind;
using vexa::Stylesheet;
using vexa::Transformation;

namespace {

constexpr std::size_t MEBIBYTE = std::size_t{1024} * 1024;

vexa::Limits toLimits(const Limits& limits) {
    constexpr std::size_t USUAL_DEPTH = 100'000;
    // On 32-bit systems a limit may be larger than what there can be.
    const auto bytes = [](unsigned mebibytes) {
        return mebibytes <= SIZE_MAX / MEBIBYTE ? mebibytes * MEBIBYTE : SIZE_MAX;
    };
    vexa::Limits result;
    result.memory = bytes(limits.maxMemory);
    result.output = bytes(limits.maxOutput);
    result.time = std::chrono::seconds(limits.maxSeconds);
    result.depth = limits.maxDepth == 0 ? USUAL_DEPTH : limits.maxDepth;
    return result;
}

/** The prefixes of an expression: what stands before a single colon, outside of strings. */
std::set<std::string> prefixesIn(const std::string& expression) {
    std::set<std::string> prefixes;
    std::string word;
    char quote = '\0';
    for (std::size_t i = 0; i < expression.size(); ++i) {
        const char c = expression[i];
        const bool isPart = std::isalnum(static_cast<unsigned char>(c)) || (c & 0x80) != 0 ||
                            c == '_' || c == '-' || c == '.';
        if (quote != '\0' || c == '"' || c == '\'') {
            quote = quote == '\0' ? c : quote == c ? '\0' : quote;
            word.clear();
        } else if (isPart) {
            word += c;
        } else if (c == ':' && i + 1 < expression.size() && expression[i + 1] == ':') {
            ++i; // an axis
            word.clear();
        } else {
            if (c == ':' && !word.empty()) {
                prefixes.insert(word);
            }
            word.clear();
        }
    }
    return prefixes;
}

/** What the source binds a prefix to, at its document element or wherever else; or empty. */
std::string uriOfPrefix(const std::string& prefix, const Document& source) {
    for (const char* elements : {"/*", "//*"}) {
        const auto uri = vexa::XPath::compile("string(" + std::string(elements) +
                                              "/namespace::*[name() = '" + prefix + "'])")
                             .evaluate(source);
        if (uri.boolean()) {
            return uri.string();
        }
    }
    return "";
}

int report(const Session& session, const vexa::Error& error) {
    printError(session.describe(error));
    return error.kind() == ErrorKind::Usage ? EXIT_USAGE : EXIT_FAILED;
}

int runGuarded(const RunOptions& options, const NamedFiles& files, const InputArgument& blamed,
               const std::function<void(Session&)>& work) {
    Session session(options, files, [](const vexa::Diagnostic& message, const std::string& text) {
        if (message.severity == vexa::Severity::Message) {
            std::cerr << text + "\n";
        } else {
            printError(text);
        }
    });
    try {
        enterSandboxIfWanted(options, files);
        work(session);
    } catch (const vexa::Error& error) {
        return report(session, error);
    } catch (const std::bad_alloc&) {
        printError(oneLine(blamed.name()) + ": out of memory");
        return EXIT_FAILED;
    } catch (const std::exception& error) {
        printError(oneLine(error.what()));
        return EXIT_FAILED;
    }
    if (options.timing && !options.quiet) {
        std::cerr << session.timing().report();
    }
    return EXIT_DONE;
}

/** In a sandbox. */
std::vector<fs::path> readableFolders(const RunOptions& options, const NamedFiles& files) {
    auto folders = files.folders();
    if (!options.noCatalogs) {
        folders.insert(folders.end(), std::begin(CATALOG_FOLDERS), std::end(CATALOG_FOLDERS));
    }
    return folders;
}

} // namespace

std::vector<fs::path> NamedFiles::folders() const {
    std::set<fs::path> folders;
    for (const InputArgument& input : inputs) {
        if (const auto path = input.path()) {
            folders.insert(path->has_parent_path() ? path->parent_path() : ".");
        }
    }
    return {folders.begin(), folders.end()};
}

fs::path NamedFiles::outputFolder() const {
    std::error_code ignored;
    const auto status = fs::status(output, ignored);
    if (fs::is_directory(status)) {
        return output;
    }
    if (output == STANDARD_STREAM || (fs::exists(status) && !fs::is_regular_file(status))) {
        return {};
    }
    const fs::path folder = fs::path(output).parent_path();
    return folder.empty() ? "." : folder;
}

Session::Session(const RunOptions& options, const NamedFiles& files, Emit emit)
    : m_options(options), m_emit(std::move(emit)), m_folders(readableFolders(options, files)) {
    for (const InputArgument& input : files.inputs) {
        m_names.add(input);
    }
    if (files.output != STANDARD_STREAM) {
        m_names.add(InputArgument(files.output));
    }
    for (const std::string& report : files.reports) {
        m_names.add(InputArgument(report));
    }
    const fs::path documents =
        options.documents.empty() ? files.outputFolder() : fs::path(options.documents);
    if (!documents.empty()) {
        std::error_code isTold; // when something is written there
        if (!options.documents.empty()) {
            fs::create_directories(documents, isTold);
        }
        m_documents.emplace(documents);
    }
}

vexa::Options Session::operationOptions() {
    vexa::Options options;
    options.limits = toLimits(m_options.limits);
    options.access.network = m_options.network && !m_options.sandbox;
    options.access.externalEntities = !m_options.noEntities;
    if (m_options.sandbox) {
        options.access.folders = m_folders;
    }
    if (!m_options.noCatalogs) {
        options.resolver = lazyCatalogResolver();
    }
    options.onMessage = [this](const vexa::Diagnostic& message) {
        if (!m_options.quiet || message.severity != vexa::Severity::Message) {
            m_emit(message, messageText(message, m_names));
        }
    };
    return options;
}

Stylesheet Session::compile(const InputArgument& stylesheet) {
    m_names.setDefault(stylesheet.name());
    auto compiled = Stylesheet::compile(stylesheet.input(), operationOptions());
    m_timing.endPhase("stylesheet");
    return compiled;
}

Document Session::parse(const InputArgument& source) {
    m_names.setDefault(source.name());
    auto document = Document::parse(source.input(), operationOptions());
    m_timing.endPhase("source");
    return document;
}

Transformation Session::prepare(const Stylesheet& stylesheet) {
    Transformation run(stylesheet, operationOptions());
    for (const Parameter& parameter : m_options.parameters) {
        if (parameter.kind == Parameter::Kind::String) {
            run.parameter(parameter.name, parameter.value);
        } else if (parameter.kind == Parameter::Kind::Number) {
            run.parameter(parameter.name, parameter.number);
        }
    }
    run.onDocument([this](const std::string& href, const std::string& base,
                          const vexa::DocumentSettings& /*settings*/) {
        if (!m_documents) {
            throw vexa::Error(ErrorKind::Denied,
                              "the document '" + href + "' may not be written without --documents");
        }
        allowManyFiles(); // all are open until the last one is complete
        return m_documents->output(href, base);
    });
    return run;
}

void Session::setExpressions(Transformation& run, const Document& source) {
    for (const Parameter& parameter : m_options.parameters) {
        if (parameter.kind == Parameter::Kind::Expression) {
            run.parameter(parameter.name, evaluate(parameter.value, source, {}));
        }
    }
}

void Session::transform(Transformation& run, const InputArgument& source,
                        const vexa::Output& output) {
    m_names.setDefault(source.name());
    const auto& parameters = m_options.parameters;
    const bool hasExpression =
        std::any_of(parameters.begin(), parameters.end(), [](const Parameter& parameter) {
            return parameter.kind == Parameter::Kind::Expression;
        });
    if (hasExpression || m_options.timing) {
        const Document document = parse(source);
        setExpressions(run, document);
        run.to(document, output);
    } else {
        run.to(source.input(), output);
    }
    m_timing.endPhase("transform");
}

vexa::Value Session::evaluate(const std::string& expression, const Document& source,
                              const vexa::Namespaces& namespaces) {
    vexa::Namespaces all = namespaces;
    for (const std::string& prefix : prefixesIn(expression)) {
        const std::string uri = all.count(prefix) == 0 ? uriOfPrefix(prefix, source) : "";
        if (!uri.empty()) {
            all.emplace(prefix, uri);
        }
    }
    const std::string before = m_names.setDefault("expression");
    auto value = vexa::XPath::compile(expression, all).evaluate(source, operationOptions());
    m_names.setDefault(before);
    return value;
}

std::string Session::describe(const vexa::Error& error) const {
    const bool hasExcerpt = m_options.excerpt || isSmartTerminal(errorDescriptor());
    return errorText(error, m_names, m_options.limits) + (hasExcerpt ? errorExcerpt(error) : "");
}

vexa::Output outputTo(const std::string& output, std::ostream& stream) {
    return output == STANDARD_STREAM ? vexa::Output::stream(stream)
                                     : vexa::Output::file(writablePath(output));
}

int runSession(const RunOptions& options, const NamedFiles& files, const InputArgument& blamed,
               const std::function<void(Session&)>& work) {
    const auto guarded = [&] { return runGuarded(options, files, blamed, work); };
    Limits limits = options.limits;
    limits.maxSeconds = options.limitsParts ? 0 : limits.maxSeconds;
    return options.needProcess() ? runIsolated(oneLine(blamed.name()), limits, guarded) : guarded();
}

void enterSandboxIfWanted(const RunOptions& options, const NamedFiles& files) {
    if (!options.sandbox) {
        return;
    }
    SandboxPlaces places;
    for (const InputArgument& input : files.inputs) {
        if (const auto path = input.path()) {
            places.inputs.push_back(*path);
        }
    }
    places.folders = readableFolders(options, files);
    if (!options.noCatalogs) {
        loadCatalogLibrary(); // cannot be read later
        const auto catalogs = listedCatalogs();
        places.inputs.insert(places.inputs.end(), catalogs.begin(), catalogs.end());
    }
    if (files.output != STANDARD_STREAM) {
        places.outputs.push_back(files.output);
    }
    for (const std::string& report : files.reports) {
        places.outputs.emplace_back(reportPath(report));
    }
    if (!options.documents.empty()) {
        places.outputs.emplace_back(options.documents);
    }
    enterSandbox(places);
}

void checkFiles(const NamedFiles& files) {
    if (files.output.empty()) {
        throw UsageError("-o", "empty file name");
    }
    std::set<fs::path> places{fullPlace(reportPath(files.output))};
    for (const std::string& report : files.reports) {
        const fs::path place = fullPlace(reportPath(report));
        if (place != "/dev/null" && !places.insert(place).second) {
            throw UsageError(report, "it is the place of another output");
        }
        const auto id = fileId(reportPath(report));
        for (const InputArgument& input : files.inputs) {
            if (id && input.id() == id) {
                throw UsageError(report, "the report would replace " + input.name());
            }
        }
    }
    const auto count =
        std::count_if(files.inputs.begin(), files.inputs.end(),
                      [](const InputArgument& input) { return input.isStandardInput(); });
    if (count > 1) {
        throw UsageError(STANDARD_STREAM, "standard input can be read only once");
    }
}
