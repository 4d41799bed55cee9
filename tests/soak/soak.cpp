// Runs transforms and queries of both interfaces in several threads for a while, over files,
// streams and documents in memory, with good and bad inputs in random order. Fails at a wrong
// result, and if memory grows that is guaranteed to be freed.
//
//     soak SECONDS SAMPLES_FOLDER
#include <vexa/Dom2Dom.h>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>
#include <vexa/xslt.h>

#include "support/MemoryChecker.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned THREADS = 4;
constexpr int TASKS_FOR_THE_SAME_TOOLS = 25;
/** How much memory allocators and caches may still take after the first third of the time. */
constexpr long SLACK_KIB = 24 * 1024;

struct Outcome {
    int code;
    std::string text;

    bool operator==(const Outcome& other) const { return code == other.code && text == other.text; }
};

enum class Expected { Success, Failure };

std::string read(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw std::runtime_error("cannot read " + file);
    }
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

/** Copies its source, or fails in the way that the document element names. */
constexpr const char* FILTER =
    "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
    "xmlns:f='urn:f'><xsl:template match='/*'><xsl:copy-of select='.'/></xsl:template>"
    "<xsl:template match='/terminate'><xsl:message terminate='yes'>end</xsl:message></xsl:template>"
    "<xsl:template match='/throw'><a><xsl:value-of select='f:throw()'/></a></xsl:template>"
    "</xsl:stylesheet>";

/** What a host's own function throws. */
struct HostFailure {};

/** What all threads use at the same time. */
struct Shared {
    explicit Shared(const std::string& samples)
        : orders(vexa::Document::parse(vexa::Input::text(read(samples + "/orders-small.xml")))),
          report(vexa::Stylesheet::compile(vexa::Input::file(samples + "/report.xsl"))),
          filter(vexa::Stylesheet::compile(vexa::Input::text(FILTER))),
          count(vexa::XPath::compile("count(//*) + count(//@*)")) {}

    vexa::Document orders;
    vexa::Stylesheet report;
    vexa::Stylesheet filter;
    vexa::XPath count;
};

/** What one thread uses again and again. */
struct Tools {
    explicit Tools(const Shared& shared) : report(shared.report), filter(shared.filter) {
        filter.function("urn:f", "throw",
                        [](const vexa::Call&) -> vexa::Value { throw HostFailure(); });
    }

    VEXAXslTransformer transformer;
    vexa::Transformation report;
    vexa::Transformation filter;
};

/** One thing that a host does. */
struct Task {
    const char* name;
    Expected expected;
    /** Whether no memory stays with the tools. */
    bool isInMemory;
    std::function<Outcome(Tools&)> run;
};

/** A file that exists as long as this object. */
class TemporaryFile {
public:
    TemporaryFile() { close(mkstemp(m_name)); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { unlink(m_name); }

    const char* name() const { return m_name; }

private:
    char m_name[sizeof "/tmp/vexa-soak-XXXXXX"] = "/tmp/vexa-soak-XXXXXX";
};

Outcome transformFiles(VEXAXslTransformer& transformer, const std::string& source,
                       const std::string& stylesheet) {
    const TemporaryFile file;
    const int code = transformer.doTransform(source.c_str(), stylesheet.c_str(), file.name());
    return {code, code == 0 ? read(file.name()) : transformer.getLastError()};
}

Outcome transformStreams(VEXAXslTransformer& transformer, const std::string& source,
                         const std::string& stylesheet) {
    std::istringstream input(source);
    std::ostringstream output;
    const int code = transformer.doTransform(input, stylesheet.c_str(), output);
    return {code, output.str()}; // an earlier operation's error message may still be there
}

Outcome transformInMemory(VEXAXslTransformer& transformer, const std::string& source,
                          const std::string& first, const std::string& second) {
    const auto holder = transformer.createDom2Dom();
    const auto between = transformer.createDom2Dom();
    const auto result = transformer.createDom2Dom();
    std::ostringstream output;
    holder->InitializeInputSource(source.c_str());
    between->InitializeOutputTarget();
    result->InitializeOutputTarget(output);
    int code = transformer.doTransform(*holder, first.c_str(), *between);
    if (code == 0) {
        code = transformer.doTransform(*between, second.c_str(), *result);
    }
    return {code, code == 0 ? output.str() : transformer.getLastError()};
}

Outcome query(VEXAXslTransformer& transformer, const std::string& source, const char* expression) {
    const auto holder = transformer.createDom2Dom();
    std::ostringstream output;
    holder->InitializeInputSource(source.c_str());
    const int code = transformer.doXPath(*holder, expression, output);
    return {code, code == 0 ? output.str() : transformer.getLastError()};
}

std::vector<Task> classicTasks(const std::string& samples) {
    const std::string file = samples + "/orders-small.xml";
    const std::string source = read(file);
    const std::string report = samples + "/report.xsl";
    const std::string openOnly = samples + "/open-only.xsl";
    constexpr auto good = Expected::Success, bad = Expected::Failure;
    std::vector<Task> tasks;
    const auto add = [&](const char* name, Expected expected, bool isInMemory, auto run) {
        tasks.push_back(
            {name, expected, isInMemory, [=](Tools& tools) { return run(tools.transformer); }});
    };
    using T = VEXAXslTransformer;
    add("files", good, false, [=](T& t) { return transformFiles(t, file, report); });
    add("streams", good, false, [=](T& t) { return transformStreams(t, source, report); });
    add("memory", good, true, [=](T& t) { return transformInMemory(t, source, openOnly, report); });
    add("query", good, true, [=](T& t) { return query(t, source, "string(count(//*))"); });
    add("node", good, true, [=](T& t) { return query(t, source, "/*/*[1]"); });
    add("no such source", bad, false, [=](T& t) { return transformFiles(t, "none.xml", report); });
    add("no such stylesheet", bad, true,
        [=](T& t) { return transformInMemory(t, source, "none.xsl", report); });
    add("malformed source", bad, false,
        [=](T& t) { return transformStreams(t, "<a><b></a>", report); });
    add("no stylesheet", bad, false, [=](T& t) { return transformFiles(t, file, "<"); });
    add("wrong expression", bad, true, [=](T& t) { return query(t, source, "count(//*"); });
    add("unknown function", bad, true, [=](T& t) { return query(t, source, "nothing()"); });
    return tasks;
}

/** Of the second interface: no memory stays, whatever it does. */
std::vector<Task> xsltTasks(const std::string& samples, const Shared& shared) {
    using vexa::Input;
    using vexa::Output;
    const std::string file = samples + "/orders-small.xml";
    const std::string source = read(file);
    const std::string report = samples + "/report.xsl";
    constexpr auto good = Expected::Success, bad = Expected::Failure;
    std::vector<Task> tasks;
    const auto add = [&](const char* name, Expected expected, auto run) {
        tasks.push_back({name, expected, true, [=](Tools& tools) -> Outcome {
                             try {
                                 return {0, run(tools)};
                             } catch (const vexa::Error& error) {
                                 return {-1, error.what()};
                             } catch (const HostFailure&) {
                                 return {-2, "thrown by the host"};
                             }
                         }});
    };
    add("xslt: text", good, [=](Tools& t) { return t.report.toString(shared.orders); });
    add("xslt: input", good, [=](Tools& t) { return t.report.toString(Input::view(source)); });
    add("xslt: files", good, [=](Tools& t) {
        const TemporaryFile result;
        t.report.to(Input::file(file), Output::file(result.name()));
        return read(result.name());
    });
    add("xslt: documents", good,
        [=](Tools& t) { return t.report.toDocument(t.filter.toDocument(shared.orders)).xml(); });
    add("xslt: new stylesheet", good, [=](Tools&) {
        const auto stylesheet = vexa::Stylesheet::compile(Input::file(report));
        return vexa::Transformation(stylesheet).toString(shared.orders);
    });
    add("xslt: expression", good,
        [=](Tools&) { return shared.count.evaluate(shared.orders).string(); });
    add("xslt: new expression", good, [=](Tools&) {
        return vexa::XPath::compile("/*/*[1]").evaluate(shared.orders).nodes().at(0).xml();
    });
    add("xslt: malformed source", bad,
        [](Tools& t) { return t.report.toString(Input::view("<a><b></a>")); });
    add("xslt: no such source", bad,
        [](Tools& t) { return t.report.toString(Input::file("/none.xml")); });
    add("xslt: message that terminates", bad,
        [](Tools& t) { return t.filter.toString(Input::view("<terminate/>")); });
    add("xslt: function that throws", bad,
        [](Tools& t) { return t.filter.toDocument(Input::view("<throw/>")).xml(); });
    add("xslt: wrong stylesheet", bad, [](Tools&) {
        return vexa::Stylesheet::compile(Input::view("<xsl:stylesheet version='1.0' xmlns:xsl="
                                                     "'http://www.w3.org/1999/XSL/Transform'>"
                                                     "<xsl:template match='a['/></xsl:stylesheet>"))
            .method();
    });
    add("xslt: wrong expression", bad,
        [=](Tools&) { return vexa::XPath::compile("nothing()").evaluate(shared.orders).string(); });
    return tasks;
}

std::vector<Task> tasksOver(const std::string& samples, const Shared& shared) {
    std::vector<Task> tasks = classicTasks(samples);
    for (Task& task : xsltTasks(samples, shared)) {
        tasks.push_back(std::move(task));
    }
    return tasks;
}

bool isAsExpected(const Task& task, const Outcome& outcome) {
    return task.expected == Expected::Success ? outcome.code == 0 && !outcome.text.empty()
                                              : outcome.code != 0;
}

/** The result of each task when it runs alone. The threads have to get the same. */
std::vector<Outcome> referenceOf(const std::vector<Task>& tasks, const Shared& shared) {
    std::vector<Outcome> reference;
    for (const Task& task : tasks) {
        Tools tools(shared);
        const Outcome outcome = task.run(tools);
        if (!isAsExpected(task, outcome)) {
            throw std::runtime_error(std::string(task.name) + ": unexpected result " +
                                     std::to_string(outcome.code) + ' ' + outcome.text);
        }
        reference.push_back(outcome);
    }
    return reference;
}

long residentKiB() {
    long pages = 0;
    long ignored = 0;
    std::ifstream("/proc/self/statm") >> ignored >> pages;
    return pages * (sysconf(_SC_PAGESIZE) / 1024);
}

/** Drops the engine's own messages. A stream that fails would be an error for the engine. */
class Silence : public std::streambuf {
    int overflow(int character) override { return character == EOF ? 0 : character; }
};

class Soak {
public:
    Soak(const std::string& samples, std::chrono::seconds duration)
        : m_shared(samples), m_tasks(tasksOver(samples, m_shared)),
          m_reference(referenceOf(m_tasks, m_shared)), m_end(Clock::now() + duration),
          m_warm(Clock::now() + duration / 3) {}

    bool run() {
        std::vector<std::thread> threads;
        for (unsigned seed = 0; seed < THREADS; ++seed) {
            // The first one uses the same tools all the time.
            threads.emplace_back([this, seed] { seed == 0 ? useOne() : recreate(seed); });
        }
        std::this_thread::sleep_until(m_warm);
        const long warm = residentKiB();
        for (std::thread& thread : threads) {
            thread.join();
        }
        const long atEnd = residentKiB();
        const bool isBounded = atEnd <= warm + SLACK_KIB || isUnderAMemoryChecker();
        std::printf("%ld operations, %ld wrong results; %ld KiB when warm, %ld KiB at the end%s\n",
                    m_operations.load(), m_wrong.load(), warm, atEnd,
                    isBounded ? "" : ": memory grows");
        return isBounded && m_wrong == 0;
    }

private:
    void useOne() {
        Tools tools(m_shared);
        std::minstd_rand random(1);
        while (Clock::now() < m_end) {
            const std::size_t number = random() % m_tasks.size();
            if (m_tasks[number].isInMemory) {
                check(tools, number);
            }
        }
    }

    void recreate(unsigned seed) {
        std::minstd_rand random(seed + 1);
        while (Clock::now() < m_end) {
            TQXslTransformer_Initialize(nullptr);
            {
                Tools tools(m_shared);
                for (int i = 0; i < TASKS_FOR_THE_SAME_TOOLS; ++i) {
                    check(tools, random() % m_tasks.size());
                }
            }
            TQXslTransformer_Terminate(nullptr);
        }
    }

    void check(Tools& tools, std::size_t number) {
        ++m_operations;
        const Outcome outcome = m_tasks[number].run(tools);
        if (!(outcome == m_reference[number]) && ++m_wrong < 10) {
            std::fprintf(stderr, "%s: %d %s\n", m_tasks[number].name, outcome.code,
                         outcome.text.substr(0, 500).c_str());
        }
    }

    const Shared m_shared;
    const std::vector<Task> m_tasks;
    const std::vector<Outcome> m_reference;
    const Clock::time_point m_end;
    const Clock::time_point m_warm;
    std::atomic<long> m_operations{0};
    std::atomic<long> m_wrong{0};
};

} // namespace

int main(int argc, char** argv) {
    const int seconds = argc == 3 ? std::atoi(argv[1]) : 0;
    if (seconds <= 0) {
        std::fputs("usage: soak SECONDS SAMPLES_FOLDER\n", stderr);
        return EXIT_FAILURE;
    }
    Silence silence;
    std::streambuf* const engineMessages = std::cerr.rdbuf(&silence);
    TQXslTransformer_Initialize(nullptr);
    bool isGood = false;
    try {
        isGood = Soak(argv[2], std::chrono::seconds(seconds)).run();
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "soak: %s\n", error.what());
    }
    TQXslTransformer_Terminate(nullptr);
    std::cerr.rdbuf(engineMessages);
    return isGood ? EXIT_SUCCESS : EXIT_FAILURE;
}
