// Runs one stylesheet in many threads, with one transformer for each thread, and compares the
// results:
//
//     threads orders-small.xml report.xsl 8
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

namespace {

// [work of one thread]
void work(const char* source, const char* stylesheet, std::string& result) {
    VEXAXslTransformer transformer; // one for each thread
    std::ifstream in(source);
    std::ostringstream out;
    if (transformer.doTransform(in, stylesheet, out) == 0) {
        result = out.str();
    } else {
        std::cerr << transformer.getLastError() << '\n';
    }
}
// [/work of one thread]

int run(const char* source, const char* stylesheet, std::size_t count) {
    // [start and join]
    std::vector<std::string> results(count);
    std::vector<std::thread> threads;
    for (std::string& result : results) {
        threads.emplace_back([&] { work(source, stylesheet, result); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    // [/start and join]
    const bool done = !results.empty() && !results.front().empty();
    const auto equal = std::count(results.begin(), results.end(), results.front());
    std::cout << count << " threads, " << equal << " equal results\n";
    return done && static_cast<std::size_t>(equal) == count ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    const unsigned long count = argc == 4 ? std::strtoul(argv[3], nullptr, 10) : 0;
    if (count == 0 || count > 1000) {
        std::cerr << "usage: threads SOURCE STYLESHEET THREADS\n";
        return EXIT_FAILURE;
    }
    TQXslTransformer_Initialize(nullptr); // once, before the threads
    const int status = run(argv[1], argv[2], count);
    TQXslTransformer_Terminate(nullptr); // once, after the threads have ended
    return status;
}
