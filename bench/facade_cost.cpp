// The costs that the library adds to those of the engine: the same operations by the library, and
// by the engine alone, used as its documentation shows.
#include "support/BareEngine.h"
#include "support/Work.h"

#include <vexa/Dom2Dom.h>
#include <vexa/VEXAXslTransformer.h>

#include <memory>
#include <sstream>

#include <xalanc/DOMSupport/XalanDocumentPrefixResolver.hpp>
#include <xalanc/PlatformSupport/XalanOutputStreamPrintWriter.hpp>
#include <xalanc/PlatformSupport/XalanStdOutputStream.hpp>
#include <xalanc/PlatformSupport/XalanTranscodingServices.hpp>
#include <xalanc/XMLSupport/FormatterToXML.hpp>
#include <xalanc/XMLSupport/FormatterTreeWalker.hpp>
#include <xalanc/XPath/XPathEvaluator.hpp>
#include <xalanc/XSLT/XSLTInputSource.hpp>
#include <xalanc/XSLT/XSLTResultTarget.hpp>
#include <xalanc/XalanDOM/XalanDocument.hpp>
#include <xalanc/XalanSourceTree/FormatterToSourceTree.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDOMSupport.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDocument.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeParserLiaison.hpp>
#include <xalanc/XalanTransformer/XalanDocumentBuilder.hpp>
#include <xalanc/XalanTransformer/XalanParsedSource.hpp>

namespace {

constexpr const char* EXPRESSION = "string(/rows/row[1]/name)";

struct Files {
    std::string source;
    std::string stylesheet;
    std::string output;
};

xercesc::MemoryManager& memory() {
    return xalanc::XalanMemMgrs::getDefaultXercesMemMgr();
}

/** @param trailer size of what the library adds to some outputs: a NUL, a newline */
std::size_t sizeOf(std::ostringstream& output, std::size_t trailer = 0) {
    return static_cast<std::size_t>(output.tellp()) - trailer;
}

// ---- The library ----

Work::Call facadeFiles(const Files& files) {
    const auto transformer = std::make_shared<VEXAXslTransformer>();
    return [transformer, files] {
        require(transformer->doTransform(files.source.c_str(), files.stylesheet.c_str(),
                                         files.output.c_str()) == 0,
                transformer->getLastError());
        return std::size_t{0};
    };
}

Work::Call facadeStreams(const Files& files) {
    const auto transformer = std::make_shared<VEXAXslTransformer>();
    return [transformer, files, text = readFile(files.source)] {
        std::istringstream source(text);
        std::ostringstream output;
        require(transformer->doTransform(source, files.stylesheet.c_str(), output) == 0,
                transformer->getLastError());
        return sizeOf(output, 1);
    };
}

/** A transformer and one of its in-memory documents. */
struct FacadeDocument {
    explicit FacadeDocument(const Files& files)
        : transformer(std::make_unique<VEXAXslTransformer>()),
          source(transformer->createDom2Dom()) {
        require(source->InitializeInputSource(readFile(files.source).c_str()), files.source);
    }

    std::unique_ptr<VEXAXslTransformer> transformer;
    std::unique_ptr<Dom2Dom> source;
};

Work::Call facadeMemory(const Files& files) {
    const auto document = std::make_shared<FacadeDocument>(files);
    return [document, files] {
        VEXAXslTransformer& transformer = *document->transformer;
        const auto result = transformer.createDom2Dom();
        require(result->InitializeOutputTarget() &&
                    transformer.doTransform(*document->source, files.stylesheet.c_str(), *result) ==
                        0,
                transformer.getLastError());
        return std::size_t{0};
    };
}

Work::Call facadeQuery(const Files& files) {
    const auto document = std::make_shared<FacadeDocument>(files);
    return [document] {
        std::ostringstream output;
        VEXAXslTransformer& transformer = *document->transformer;
        require(transformer.doXPath(*document->source, EXPRESSION, output) == 0,
                transformer.getLastError());
        return sizeOf(output);
    };
}

/** Serialize() writes only the result of a transform. */
Work::Call facadeSerialise(const Files& files) {
    const auto document = std::make_shared<FacadeDocument>(files);
    const std::shared_ptr<Dom2Dom> result = document->transformer->createDom2Dom();
    require(result->InitializeOutputTarget() &&
                document->transformer->doTransform(*document->source, files.stylesheet.c_str(),
                                                   *result) == 0,
            document->transformer->getLastError());
    return [document, result] {
        std::ostringstream output;
        require(result->Serialize(output) == 0, result->getLastError());
        return sizeOf(output, 2);
    };
}

// ---- The engine alone ----

Work::Call bareFiles(const Files& files) {
    const auto engine = std::make_shared<BareEngine>();
    return [engine, files] {
        engine->installFunctions();
        transformKept(*engine, files.source.c_str(), files.stylesheet, files.output.c_str());
        return std::size_t{0};
    };
}

Work::Call bareStreams(const Files& files) {
    const auto engine = std::make_shared<BareEngine>();
    return [engine, files, text = readFile(files.source)] {
        std::istringstream source(text);
        std::ostringstream output;
        engine->installFunctions();
        transformKept(*engine, &source, files.stylesheet, output);
        return sizeOf(output);
    };
}

/** One call for everything, as in the first example of the engine. It does not keep the source. */
Work::Call bareAtOnce(const Files& files) {
    const auto engine = std::make_shared<BareEngine>();
    return [engine, files] {
        require(engine->transform(files.source.c_str(), files.stylesheet.c_str(),
                                  files.output.c_str()) == 0,
                engine->getLastError());
        return std::size_t{0};
    };
}

/** An engine and a document that it has parsed. */
struct BareDocument {
    explicit BareDocument(const Files& files) {
        require(engine.parseSource(files.source.c_str(), source) == 0, files.source);
    }

    BareEngine engine;
    const xalanc::XalanParsedSource* source = nullptr; // owned by the engine
};

/** A document that receives a result, made with a document builder of the engine. */
class BareResult {
public:
    explicit BareResult(xalanc::XalanTransformer& engine)
        : m_engine(engine), m_pBuilder(engine.createDocumentBuilder()),
          m_formatter(memory(),
                      static_cast<xalanc::XalanSourceTreeDocument*>(m_pBuilder->getDocument())) {}
    BareResult(const BareResult&) = delete;
    BareResult& operator=(const BareResult&) = delete;
    ~BareResult() { m_engine.destroyDocumentBuilder(m_pBuilder); }

    xalanc::FormatterListener& formatter() { return m_formatter; }
    xalanc::XalanDocument* document() { return m_pBuilder->getDocument(); }

private:
    xalanc::XalanTransformer& m_engine;
    xalanc::XalanDocumentBuilder* m_pBuilder;
    xalanc::FormatterToSourceTree m_formatter;
};

Work::Call bareMemory(const Files& files) {
    const auto document = std::make_shared<BareDocument>(files);
    return [document, files] {
        BareResult result(document->engine);
        const xalanc::XSLTResultTarget target(result.formatter());
        require(document->engine.transform(*document->source, files.stylesheet.c_str(), target) ==
                    0,
                document->engine.getLastError());
        return std::size_t{0};
    };
}

Work::Call bareQuery(const Files& files) {
    const auto document = std::make_shared<BareDocument>(files);
    return [document] {
        xalanc::XalanDocument* const node = document->source->getDocument();
        xalanc::XalanSourceTreeDOMSupport support;
        xalanc::XalanSourceTreeParserLiaison liaison(support);
        support.setParserLiaison(&liaison);
        xalanc::XPathEvaluator evaluator;
        const xalanc::XalanDocumentPrefixResolver prefixes(node, xalanc::XalanDOMString());
        const xalanc::XObjectPtr result =
            evaluator.evaluate(support, node, xalanc::XalanDOMString(EXPRESSION).c_str(), prefixes);
        xalanc::CharVectorType narrow(memory());
        result->str(evaluator.getExecutionContext()).transcode(narrow);
        std::ostringstream output;
        output << narrow.begin();
        return sizeOf(output);
    };
}

Work::Call bareSerialise(const Files& files) {
    const auto document = std::make_shared<BareDocument>(files);
    const auto result = std::make_shared<BareResult>(document->engine);
    const xalanc::XSLTResultTarget target(result->formatter());
    require(document->engine.transform(*document->source, files.stylesheet.c_str(), target) == 0,
            document->engine.getLastError());
    return [document, result] {
        std::ostringstream output;
        xalanc::XalanStdOutputStream stream(output);
        xalanc::XalanOutputStreamPrintWriter writer(stream);
        xalanc::FormatterToXML formatter(writer);
        xalanc::FormatterTreeWalker walker(formatter);
        formatter.startDocument();
        const xalanc::XalanNode* const root = result->document()->getDocumentElement();
        walker.traverseSubtree(root); // the overload for const nodes is faster
        formatter.endDocument();
        return sizeOf(output);
    };
}

// ---- Both, over documents of three sizes ----

struct Kind {
    const char* name;
    Work::Call (*facade)(const Files&);
    Work::Call (*bare)(const Files&);
};

constexpr Kind KINDS[] = {{"files", facadeFiles, bareFiles},
                          {"streams", facadeStreams, bareStreams},
                          {"memory", facadeMemory, bareMemory},
                          {"query", facadeQuery, bareQuery},
                          {"serialise", facadeSerialise, bareSerialise}};

struct Size {
    const char* name;
    int mostCalls;
};

// A large source that is kept needs more than 100 MB.
constexpr Size SIZES[] = {
    {"tiny", Work::KEEPS_SOURCES}, {"medium", Work::KEEPS_SOURCES}, {"large", 1}};

Files filesOf(const std::string& folder, const std::string& size) {
    return {folder + "/rows-" + size + ".xml", folder + "/table.xsl", folder + "/output"};
}

void add(Works& works, const std::string& name, Work::Call (*prepare)(const Files&),
         const Files& files, int mostCalls) {
    works.push_back({name, [prepare, files] { return prepare(files); }, mostCalls});
}

/** The memory that is kept for a source with many elements and little text. */
void addKept(Works& works, const std::string& folder) {
    const Files files = filesOf(folder, "elements");
    add(works, "facade files elements", facadeFiles, files, 1);
    add(works, "bare files elements", bareFiles, files, 1);
    add(works, "bare at-once elements", bareAtOnce, files, 1);
}

} // namespace

Works makeWorks(const std::string& folder) {
    static const Library library; // until the program ends
    Works works;
    for (const Size& size : SIZES) {
        const Files files = filesOf(folder, size.name);
        for (const Kind& kind : KINDS) {
            const std::string name = std::string(kind.name) + " " + size.name;
            add(works, "facade " + name, kind.facade, files, size.mostCalls);
            add(works, "bare " + name, kind.bare, files, size.mostCalls);
        }
        add(works, std::string("bare at-once ") + size.name, bareAtOnce, files, size.mostCalls);
    }
    addKept(works, folder);
    return works;
}
