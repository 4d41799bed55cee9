// A chain of transforms in memory, compared with the same chain through text. Both read and write
// text at the ends.
#include "support/Work.h"

#include <vexa/Dom2Dom.h>
#include <vexa/VEXAXslTransformer.h>

#include <memory>
#include <sstream>

namespace {

struct Chain {
    std::string source;
    std::string stylesheet;
    int steps;
};

std::size_t runInMemory(VEXAXslTransformer& transformer, const Chain& chain) {
    std::ostringstream output;
    auto current = transformer.createDom2Dom();
    require(current->InitializeInputSource(chain.source.c_str()), "parse");
    for (int step = 1; step <= chain.steps; ++step) {
        auto result = transformer.createDom2Dom();
        require(step == chain.steps ? result->InitializeOutputTarget(output)
                                    : result->InitializeOutputTarget(),
                "result");
        require(transformer.doTransform(*current, chain.stylesheet.c_str(), *result) == 0,
                transformer.getLastError());
        current = std::move(result);
    }
    return output.str().size();
}

std::size_t runThroughText(VEXAXslTransformer& transformer, const Chain& chain) {
    std::string text = chain.source;
    for (int step = 1; step <= chain.steps; ++step) {
        std::istringstream input(text);
        std::ostringstream output;
        require(transformer.doTransform(input, chain.stylesheet.c_str(), output) == 0,
                transformer.getLastError());
        text = output.str();
        text.pop_back(); // the NUL
    }
    return text.size();
}

using Runner = std::size_t (*)(VEXAXslTransformer&, const Chain&);

Work chainWork(const std::string& name, Runner run, const Chain& chain) {
    return {name + " " + std::to_string(chain.steps),
            [run, chain] {
                const auto transformer = std::make_shared<VEXAXslTransformer>();
                return [transformer, run, chain] { return run(*transformer, chain); };
            },
            Work::KEEPS_SOURCES / chain.steps};
}

} // namespace

Works makeWorks(const std::string& folder) {
    static const Library library; // until the program ends
    Works works;
    for (const int steps : {1, 2, 4, 8}) {
        const Chain chain{readFile(folder + "/rows-medium.xml"), folder + "/identity.xsl", steps};
        works.push_back(chainWork("memory", runInMemory, chain));
        works.push_back(chainWork("text", runThroughText, chain));
    }
    return works;
}
