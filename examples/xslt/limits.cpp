// Transforms an untrusted document with an untrusted stylesheet, and says what was refused:
//
//     limits stylesheet.xsl document.xml
//
// Ctrl-C cancels the transform.
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <vexa/xslt.h>

namespace {

// [cancel]
vexa::CancelSource interrupt; // any thread may call its cancel(), and a signal handler too

extern "C" void onInterrupt(int) {
    interrupt.cancel();
}
// [/cancel]

// [limits]
vexa::Options forUntrustedInput() {
    vexa::Options options;
    options.access.folders.emplace(); // no files, and by default no network and no entities
    options.limits.memory = std::size_t{64} << 20;
    options.limits.output = std::size_t{10} << 20;
    options.limits.time = std::chrono::seconds(5);
    options.limits.depth = 1000;
    options.cancel = interrupt.token();
    return options;
}
// [/limits]

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: limits STYLESHEET DOCUMENT\n";
        return EXIT_FAILURE;
    }
    std::signal(SIGINT, onInterrupt);
    // [run]
    const vexa::Options options = forUntrustedInput();
    try {
        const auto sheet = vexa::Stylesheet::compile(vexa::Input::file(argv[1]), options);
        vexa::Transformation run(sheet, options);
        std::cout << run.toString(vexa::Input::file(argv[2])) << '\n';
        return EXIT_SUCCESS;
    } catch (const vexa::Error& error) {
        const bool isStopped =
            error.kind() == vexa::ErrorKind::Limit || error.kind() == vexa::ErrorKind::Cancelled;
        std::cout << (isStopped ? "stopped: " : "failed: ") << error.text() << '\n';
        return EXIT_FAILURE;
    }
    // [/run]
}
