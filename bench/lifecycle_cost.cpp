// Start and stop of the engines, and of a transformer.
#include "support/Work.h"

#include <vexa/VEXAXslTransformer.h>

#include <memory>

#include <xalanc/XalanTransformer/XalanTransformer.hpp>

namespace {

Work::Call startAndStop() {
    return [] {
        const Library library;
        return std::size_t{0};
    };
}

/** A further start of a library that is up only counts. */
Work::Call furtherStartAndStop() {
    return [first = std::make_shared<Library>()] {
        const Library library;
        return std::size_t{0};
    };
}

template <typename Transformer>
Work::Call makeAndDestroy() {
    return [library = std::make_shared<Library>()] {
        const Transformer transformer;
        return std::size_t{0};
    };
}

Works makeWorks(const std::string&) {
    return {{"start-and-stop", startAndStop},
            {"further-start-and-stop", furtherStartAndStop},
            {"facade", makeAndDestroy<VEXAXslTransformer>},
            {"bare", makeAndDestroy<xalanc::XalanTransformer>}};
}

} // namespace

int main(int argc, char** argv) {
    return runWorks(argc, argv, makeWorks);
}
