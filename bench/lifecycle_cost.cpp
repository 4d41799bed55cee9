// Initialization and termination of the library, creation and destruction of a transformer.
#include "support/Work.h"

#include <vexa/VEXAXslTransformer.h>

#include <memory>

#include <xalanc/XalanTransformer/XalanTransformer.hpp>

namespace {

Work::Call initializeAndTerminate() {
    return [] {
        const Library library;
        return std::size_t{0};
    };
}

/** The second initialization only counts. */
Work::Call initializeAndTerminateAgain() {
    return [first = std::make_shared<Library>()] {
        const Library library;
        return std::size_t{0};
    };
}

template <typename Transformer>
Work::Call createAndDestroy() {
    return [library = std::make_shared<Library>()] {
        const Transformer transformer;
        return std::size_t{0};
    };
}

} // namespace

Works makeWorks(const std::string&) {
    return {{"start-and-stop", initializeAndTerminate},
            {"further-start-and-stop", initializeAndTerminateAgain},
            {"facade", createAndDestroy<VEXAXslTransformer>},
            {"bare", createAndDestroy<xalanc::XalanTransformer>}};
}
