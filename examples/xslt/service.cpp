// Answers requests in several threads, with one compiled stylesheet and one parsed document. Each
// line of standard input is a request, the number of an order. The answers are printed in the order
// of the requests:
//
//     service order.xsl orders.xml 4 < requests
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>
#include <vector>
#include <vexa/xslt.h>

namespace {

// [answer]
std::string answer(vexa::Transformation& run, const vexa::Document& orders,
                   const std::string& request) {
    try {
        run.parameter("id", request); // untrusted text, which stays a text
        return "200 " + run.toString(orders);
    } catch (const vexa::Error& error) {
        if (error.kind() == vexa::ErrorKind::Terminated) { // xsl:message terminate="yes"
            return "404 " + error.text();
        }
        return std::string("500 ") + error.what();
    }
}
// [/answer]

// [threads]
std::vector<std::string> serve(const vexa::Stylesheet& page, const vexa::Document& orders,
                               const std::vector<std::string>& requests, std::size_t count) {
    std::vector<std::string> answers(requests.size());
    std::atomic<std::size_t> next{0};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < count; ++i) {
        threads.emplace_back([&] {
            vexa::Transformation run(page); // one for each thread, used again and again
            for (std::size_t taken = next++; taken < requests.size(); taken = next++) {
                answers[taken] = answer(run, orders, requests[taken]);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return answers;
}
// [/threads]

void run(const char* stylesheet, const char* source, std::size_t count) {
    std::vector<std::string> requests;
    for (std::string line; std::getline(std::cin, line);) {
        requests.push_back(line);
    }
    // [shared]
    const auto page = vexa::Stylesheet::compile(vexa::Input::file(stylesheet));
    const auto orders = vexa::Document::parse(vexa::Input::file(source));
    for (const std::string& text : serve(page, orders, requests, count)) {
        std::cout << text << '\n';
    }
    // [/shared]
}

} // namespace

int main(int argc, char** argv) {
    const unsigned long count = argc == 4 ? std::strtoul(argv[3], nullptr, 10) : 0;
    if (count == 0 || count > 1000) {
        std::cerr << "usage: service STYLESHEET SOURCE THREADS\n";
        return EXIT_FAILURE;
    }
    try {
        run(argv[1], argv[2], count);
        return EXIT_SUCCESS;
    } catch (const vexa::Error& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
