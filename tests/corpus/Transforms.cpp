#include "Transforms.h"

#include "support/InMemoryTest.h"

#include <fstream>

namespace {

/** Selects the data structure of documents for one transform. */
class TreeSelection {
public:
    explicit TreeSelection(Tree tree) {
        VEXAXslTransformer::m_bUseXercesDOM = tree == Tree::Xerces;
    }
    TreeSelection(const TreeSelection&) = delete;
    TreeSelection& operator=(const TreeSelection&) = delete;
    ~TreeSelection() { VEXAXslTransformer::m_bUseXercesDOM = false; }
};

EngineResult transformFiles(const CorpusCase& corpusCase, Tree tree) {
    const TreeSelection selection(tree);
    const TemporaryFolder folder;
    const std::string output = folder.path("out");
    VEXAXslTransformer transformer;
    const int code = transformer.doTransform(corpusCase.source.c_str(),
                                             corpusCase.stylesheet.c_str(), output.c_str());
    return {code, std::filesystem::exists(output) ? readFile(output) : "",
            transformer.getLastError()};
}

EngineResult transformStreams(const CorpusCase& corpusCase) {
    std::ifstream source(corpusCase.source, std::ios::binary);
    std::ostringstream output;
    VEXAXslTransformer transformer;
    const int code = transformer.doTransform(source, corpusCase.stylesheet.c_str(), output);
    std::string text = output.str();
    // The NUL after the result. If it is missing, the result must not be equal to the engine's.
    if (code == 0 && (text.empty() || text.back() != '\0')) {
        return {code, text + " without a NUL", ""};
    }
    if (!text.empty() && text.back() == '\0') {
        text.pop_back();
    }
    return {code, text, transformer.getLastError()};
}

Dom2DomPtr parsed(VEXAXslTransformer& transformer, const CorpusCase& corpusCase) {
    std::ifstream source(corpusCase.source, std::ios::binary);
    Dom2DomPtr document = transformer.createDom2Dom();
    // The next operation reports a failed parse.
    document->InitializeInputSource(source, corpusCase.source.c_str());
    return document;
}

EngineResult transformInMemory(const CorpusCase& corpusCase, Tree tree) {
    const TreeSelection selection(tree);
    std::ostringstream output;
    VEXAXslTransformer transformer;
    const Dom2DomPtr in = parsed(transformer, corpusCase);
    const Dom2DomPtr out = transformer.createDom2Dom();
    out->InitializeOutputTarget(output);
    const int code = transformer.doTransform(*in, corpusCase.stylesheet.c_str(), *out);
    return {code, output.str(), transformer.getLastError()};
}

EngineResult query(const CorpusCase& corpusCase, Tree tree) {
    const TreeSelection selection(tree);
    std::ostringstream output;
    VEXAXslTransformer transformer;
    const Dom2DomPtr in = parsed(transformer, corpusCase);
    const int code =
        transformer.doXPath(*in, ("string(" + corpusCase.expression + ")").c_str(), output);
    return {code, output.str(), transformer.getLastError()};
}

} // namespace

const std::vector<TransformKind>& allTransformKinds() {
    static const std::vector<TransformKind> kinds{
        {"file", false, true, [](const auto& c) { return transformFiles(c, Tree::Xalan); }},
        {"file-xerces", false, true, [](const auto& c) { return transformFiles(c, Tree::Xerces); }},
        {"stream", false, true, transformStreams},
        {"memory", false, false, [](const auto& c) { return transformInMemory(c, Tree::Xalan); }},
        {"memory-xerces", false, false,
         [](const auto& c) { return transformInMemory(c, Tree::Xerces); }},
        {"query", true, false, [](const auto& c) { return query(c, Tree::Xalan); }},
        {"query-xerces", true, false, [](const auto& c) { return query(c, Tree::Xerces); }},
    };
    return kinds;
}
