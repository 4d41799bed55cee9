#include "Roads.h"

#include "support/InMemoryTest.h"

#include <fstream>

namespace {

/** The kind of tree for one transform. */
class TreeChoice {
public:
    explicit TreeChoice(Tree tree) { VEXAXslTransformer::m_bUseXercesDOM = tree == Tree::Xerces; }
    TreeChoice(const TreeChoice&) = delete;
    TreeChoice& operator=(const TreeChoice&) = delete;
    ~TreeChoice() { VEXAXslTransformer::m_bUseXercesDOM = false; }
};

EngineResult throughFiles(const CorpusCase& corpusCase, Tree tree) {
    const TreeChoice choice(tree);
    const TemporaryFolder folder;
    const std::string output = folder.path("out");
    VEXAXslTransformer transformer;
    const int code = transformer.doTransform(corpusCase.source.c_str(),
                                             corpusCase.stylesheet.c_str(), output.c_str());
    return {code, std::filesystem::exists(output) ? readFile(output) : "",
            transformer.getLastError()};
}

EngineResult throughStreams(const CorpusCase& corpusCase) {
    std::ifstream source(corpusCase.source, std::ios::binary);
    std::ostringstream output;
    VEXAXslTransformer transformer;
    const int code = transformer.doTransform(source, corpusCase.stylesheet.c_str(), output);
    std::string text = output.str();
    // The library's own mark behind a result; without it the result is not the engine's.
    if (code == 0 && (text.empty() || text.back() != '\0')) {
        return {code, text + " without a NUL", ""};
    }
    if (!text.empty() && text.back() == '\0') {
        text.pop_back();
    }
    return {code, text, transformer.getLastError()};
}

Holder parsed(VEXAXslTransformer& transformer, const CorpusCase& corpusCase) {
    std::ifstream source(corpusCase.source, std::ios::binary);
    Holder holder = transformer.createDom2Dom();
    // A parse that fails is told by the operation that follows.
    holder->InitializeInputSource(source, corpusCase.source.c_str());
    return holder;
}

EngineResult throughMemory(const CorpusCase& corpusCase, Tree tree) {
    const TreeChoice choice(tree);
    std::ostringstream output;
    VEXAXslTransformer transformer;
    const Holder in = parsed(transformer, corpusCase);
    const Holder out = transformer.createDom2Dom();
    out->InitializeOutputTarget(output);
    const int code = transformer.doTransform(*in, corpusCase.stylesheet.c_str(), *out);
    return {code, output.str(), transformer.getLastError()};
}

EngineResult throughQuery(const CorpusCase& corpusCase, Tree tree) {
    const TreeChoice choice(tree);
    std::ostringstream output;
    VEXAXslTransformer transformer;
    const Holder in = parsed(transformer, corpusCase);
    const int code =
        transformer.doXPath(*in, ("string(" + corpusCase.expression + ")").c_str(), output);
    return {code, output.str(), transformer.getLastError()};
}

} // namespace

const std::vector<Road>& allRoads() {
    static const std::vector<Road> roads{
        {"file", false, true, [](const auto& c) { return throughFiles(c, Tree::Xalan); }},
        {"file-xerces", false, true, [](const auto& c) { return throughFiles(c, Tree::Xerces); }},
        {"stream", false, true, throughStreams},
        {"memory", false, false, [](const auto& c) { return throughMemory(c, Tree::Xalan); }},
        {"memory-xerces", false, false,
         [](const auto& c) { return throughMemory(c, Tree::Xerces); }},
        {"query", true, false, [](const auto& c) { return throughQuery(c, Tree::Xalan); }},
        {"query-xerces", true, false, [](const auto& c) { return throughQuery(c, Tree::Xerces); }},
    };
    return roads;
}
