#include "Work.h"

#include "Allocations.h"

#include <vexa/TQXslTransformer.h>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <valgrind/callgrind.h>

namespace {

/** Calls before the counted ones. */
constexpr int WARM_CALLS = 3;
/** Several, because the state of the heap differs in each call. */
constexpr int COUNTED_CALLS = 12;

/** Counts one work: callgrind writes the instructions, this function writes the rest. */
void count(const Work& work) {
    const int counted = std::min(COUNTED_CALLS, std::max(1, work.mostCalls / 2));
    const int warm = std::min(WARM_CALLS, work.mostCalls - counted);
    const Work::Call call = work.prepare();
    std::size_t size = 0;
    for (int i = 0; i < warm; ++i) {
        size = call();
    }
    const std::uint64_t before = allocations();
    CALLGRIND_TOGGLE_COLLECT;
    for (int i = 0; i < counted; ++i) {
        size = call();
    }
    CALLGRIND_TOGGLE_COLLECT;
    const std::uint64_t taken = allocations() - before;
    CALLGRIND_DUMP_STATS_AT(work.name.c_str());
    std::cout << "{\"name\": \"" << work.name << "\", \"calls\": " << counted
              << ", \"allocations\": " << taken << ", \"size\": " << size << "}" << std::endl;
}

/**
 * Measures the memory that calls keep on the heap. If there are several calls, the first one does
 * not count: it may fill caches.
 */
class KeptMemory {
public:
    explicit KeptMemory(bool countsFirst) : m_countsFirst(countsFirst) {}

    void prepared() {
        m_before = heapBytes();
        m_counted = 0;
    }
    void called(benchmark::State& state) {
        if (!m_countsFirst && !m_isWarm) {
            state.PauseTiming();
            m_before = heapBytes();
            m_isWarm = true;
            state.ResumeTiming();
        } else {
            ++m_counted;
        }
    }
    void end() {
        m_bytes += m_counted == 0 ? 0 : heapBytes() - m_before;
        m_calls += m_counted;
        m_isWarm = false;
    }
    double perCall() const {
        return m_calls == 0 ? 0.0 : static_cast<double>(m_bytes) / static_cast<double>(m_calls);
    }

private:
    bool m_countsFirst;
    bool m_isWarm = false;
    std::int64_t m_before = 0;
    std::int64_t m_counted = 0;
    std::int64_t m_bytes = 0;
    std::int64_t m_calls = 0;
};

void time(benchmark::State& state, const Work& work) {
    Work::Call call = work.prepare();
    KeptMemory kept(work.mostCalls == 1);
    kept.prepared();
    int calls = 0;
    for (auto _ : state) {
        if (calls == work.mostCalls) {
            state.PauseTiming();
            kept.end();
            call = nullptr; // destroy the old one before the new one is created
            call = work.prepare();
            kept.prepared();
            calls = 0;
            state.ResumeTiming();
        }
        benchmark::DoNotOptimize(call());
        ++calls;
        kept.called(state);
    }
    kept.end();
    state.counters["kept"] = kept.perCall();
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

} // namespace

/** Of every benchmark program. */
int main(int argc, char** argv) {
    if (argc < 2 || argv[1][0] == '-') {
        std::fprintf(stderr, "usage: %s FOLDER [--count [PART OF A NAME] | --benchmark_...]\n",
                     argv[0]);
        return 2;
    }
    const Works works = makeWorks(argv[1]);
    if (argc > 2 && std::strcmp(argv[2], "--count") == 0) {
        const std::string part = argc > 3 ? argv[3] : "";
        for (const Work& work : works) {
            if (work.name.find(part) != std::string::npos) {
                count(work);
            }
        }
        return 0;
    }
    for (const Work& work : works) {
        benchmark::RegisterBenchmark(work.name.c_str(),
                                     [&work](benchmark::State& state) { time(state, work); })
            ->Threads(work.threads)
            ->UseRealTime();
    }
    argv[1] = argv[0];
    --argc;
    ++argv;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

void require(bool isRight, const std::string& what) {
    if (!isRight) {
        std::fprintf(stderr, "failed: %s\n", what.c_str());
        std::exit(1);
    }
}

std::string readFile(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    require(!text.empty(), file);
    return text;
}

Library::Library() {
    TQXslTransformer_Initialize(nullptr);
}

Library::~Library() {
    TQXslTransformer_Terminate(nullptr);
}
