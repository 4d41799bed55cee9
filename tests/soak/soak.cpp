// Runs transformers in several threads for a while, over file, stream and in-memory transforms and
// queries, with good and bad inputs in random order. Fails at a wrong result, and if memory grows
// that is guaranteed to be freed.
//
//     soak SECONDS SAMPLES_FOLDER
#include <vexa/Dom2Dom.h>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

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
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned THREADS = 4;
constexpr int TRANSFORMS_PER_TRANSFORMER = 25;
/** How much memory allocators and caches may still take after the first third of the time. */
constexpr long SLACK_KIB = 24 * 1024;

struct Outcome {
    int code;
    std::string text;

    bool operator==(const Outcome& other) const { return code == other.code && text == other.text; }
};

enum class Expected { Success, Failure };

/** One way to use a transformer. */
struct Task {
    const char* name;
    Expected expected;
    /** Whether no memory stays with the transformer. */
    bool isInMemory;
    std::function<Outcome(VEXAXslTransformer&)> run;
};

std::string read(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw std::runtime_error("cannot read " + file);
    }
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

Outcome transformFiles(VEXAXslTransformer& transformer, const std::string& source,
                       const std::string& stylesheet) {
    char name[] = "/tmp/vexa-soak-XXXXXX";
    close(mkstemp(name));
    const int code = transformer.doTransform(source.c_str(), stylesheet.c_str(), name);
    std::string text = read(name);
    unlink(name);
    return {code, code == 0 ? text : transformer.getLastError()};
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

std::vector<Task> tasksOver(const std::string& samples) {
    const std::string file = samples + "/orders-small.xml";
    const std::string source = read(file);
    const std::string report = samples + "/report.xsl";
    const std::string openOnly = samples + "/open-only.xsl";
    using T = VEXAXslTransformer;
    constexpr auto good = Expected::Success, bad = Expected::Failure;
    return {
        {"files", good, false, [=](T& t) { return transformFiles(t, file, report); }},
        {"streams", good, false, [=](T& t) { return transformStreams(t, source, report); }},
        {"memory", good, true,
         [=](T& t) { return transformInMemory(t, source, openOnly, report); }},
        {"query", good, true, [=](T& t) { return query(t, source, "string(count(//*))"); }},
        {"node", good, true, [=](T& t) { return query(t, source, "/*/*[1]"); }},
        {"no such source", bad, false, [=](T& t) { return transformFiles(t, "none.xml", report); }},
        {"no such stylesheet", bad, true,
         [=](T& t) { return transformInMemory(t, source, "none.xsl", report); }},
        {"malformed source", bad, false,
         [=](T& t) { return transformStreams(t, "<a><b></a>", report); }},
        {"no stylesheet", bad, false, [=](T& t) { return transformFiles(t, file, "<"); }},
        {"wrong expression", bad, true, [=](T& t) { return query(t, source, "count(//*"); }},
        {"unknown function", bad, true, [=](T& t) { return query(t, source, "nothing()"); }},
    };
}

bool isAsExpected(const Task& task, const Outcome& outcome) {
    return task.expected == Expected::Success ? outcome.code == 0 && !outcome.text.empty()
                                              : outcome.code != 0;
}

/** The result of each task when it runs alone. The threads have to get the same. */
std::vector<Outcome> referenceOf(const std::vector<Task>& tasks) {
    std::vector<Outcome> reference;
    for (const Task& task : tasks) {
        VEXAXslTransformer transformer;
        const Outcome outcome = task.run(transformer);
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
        : m_tasks(tasksOver(samples)), m_reference(referenceOf(m_tasks)),
          m_end(Clock::now() + duration), m_warm(Clock::now() + duration / 3) {}

    bool run() {
        std::vector<std::thread> threads;
        for (unsigned seed = 0; seed < THREADS; ++seed) {
            // The first one uses the same transformer all the time.
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
        VEXAXslTransformer transformer;
        std::minstd_rand random(1);
        while (Clock::now() < m_end) {
            const std::size_t number = random() % m_tasks.size();
            if (m_tasks[number].isInMemory) {
                check(transformer, number);
            }
        }
    }

    void recreate(unsigned seed) {
        std::minstd_rand random(seed + 1);
        while (Clock::now() < m_end) {
            TQXslTransformer_Initialize(nullptr);
            {
                VEXAXslTransformer transformer;
                for (int i = 0; i < TRANSFORMS_PER_TRANSFORMER; ++i) {
                    check(transformer, random() % m_tasks.size());
                }
            }
            TQXslTransformer_Terminate(nullptr);
        }
    }

    void check(VEXAXslTransformer& transformer, std::size_t number) {
        ++m_operations;
        const Outcome outcome = m_tasks[number].run(transformer);
        if (!(outcome == m_reference[number]) && ++m_wrong < 10) {
            std::fprintf(stderr, "%s: %d %s\n", m_tasks[number].name, outcome.code,
                         outcome.text.substr(0, 500).c_str());
        }
    }

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
