/**
 * @file
 * The recorded functions of the engine.
 *
 * The classes here have the names of engine classes, and only functions, so that the functions have
 * the names that the linker looks for. Headers that define these classes cannot be included.
 */
#include "EngineCalls.h"

#include "EngineCallValues.h"

#include <dlfcn.h>

#include <cstddef>
#include <iosfwd>
#include <map>

#include <xalanc/PlatformSupport/FormatterListener.hpp>
#include <xalanc/XPath/XObject.hpp>
#include <xalanc/XalanDOM/XalanDOMString.hpp>

namespace {

struct Record {
    std::vector<std::string> calls;
    std::map<const void*, std::string> names;
    std::map<std::string, int> counts;
};

Record* g_record = nullptr;

/** The engine calls the same functions: those calls are not recorded. */
bool isLibrary(void* caller) {
    Dl_info info{};
    return dladdr(caller, &info) != 0 && info.dli_fname &&
           std::string(info.dli_fname).find("libVEXA_XSLTransformer") != std::string::npos;
}

std::string nameOf(const void* object) {
    if (!object) {
        return "null";
    }
    const auto name = g_record->names.find(object);
    return name == g_record->names.end() ? "?" : name->second;
}

std::string valueOf(bool value) {
    return value ? "true" : "false";
}
std::string valueOf(int value) {
    return std::to_string(value);
}
std::string valueOf(std::size_t value) {
    return std::to_string(value);
}
std::string valueOf(const void* object) {
    return nameOf(object);
}
std::string valueOf(const xalanc::XalanDOMString& text) {
    return '"' + narrow(text.c_str()) + '"';
}
std::string valueOf(const xalanc::XalanDOMChar* text) {
    return '"' + narrow(text) + '"';
}

template <typename... Values>
std::string listOf(const Values&... values) {
    std::string list;
    ((list += (list.empty() ? "" : ", ") + valueOf(values)), ...);
    return '(' + list + ')';
}

void nameNew(const void* object, const std::string& className) {
    const int number = ++g_record->counts[className];
    g_record->names[object] = number == 1 ? className : className + ' ' + std::to_string(number);
}

/** A call from an address in the program. Knows whether the call is recorded. */
class Caller {
public:
    explicit Caller(void* address) : m_isRecorded(g_record && isLibrary(address)) {}

    template <typename... Values>
    void constructs(const void* object, const char* className, const Values&... values) const {
        if (m_isRecorded) {
            nameNew(object, className);
            g_record->calls.push_back(nameOf(object) + listOf(values...));
        }
    }
    template <typename... Values>
    void calls(const void* object, const char* function, const Values&... values) const {
        if (m_isRecorded) {
            g_record->calls.push_back(nameOf(object) + '.' + function + listOf(values...));
        }
    }
    /** Names an object that a call has returned. */
    void receives(const void* object, const char* name) const {
        if (m_isRecorded) {
            g_record->names[object] = name;
        }
    }
    /** Records the destruction of an object whose construction was recorded. */
    void destroys(const void* object) const {
        if (m_isRecorded && g_record->names.count(object) != 0) {
            g_record->calls.push_back('~' + nameOf(object));
            g_record->names.erase(object);
        }
    }

private:
    const bool m_isRecorded;
};

/** The engine's definition of the calling function. */
[[gnu::noinline]] void* engineFunction() {
    Dl_info self{};
    dladdr(__builtin_return_address(0), &self);
    return dlsym(RTLD_NEXT, self.dli_sname);
}

/** Constructors, destructors and member functions take their object as the first argument. */
template <typename Result, typename... Parameters>
Result call(void* function, void* object, Parameters... arguments) {
    return reinterpret_cast<Result (*)(void*, Parameters...)>(function)(object, arguments...);
}

} // namespace

EngineCallRecord::EngineCallRecord() {
    g_record = new Record;
}

EngineCallRecord::~EngineCallRecord() {
    delete g_record;
    g_record = nullptr;
}

void EngineCallRecord::name(const void* object, const std::string& name) {
    g_record->names[object] = name;
}

std::vector<std::string> EngineCallRecord::take() {
    std::vector<std::string> calls;
    calls.swap(g_record->calls);
    g_record->counts.clear();
    return calls;
}

#define CALLER Caller(__builtin_return_address(0))

#define RECORD_DESTRUCTOR(ClassName)                                                               \
    ClassName::~ClassName() {                                                                      \
        CALLER.destroys(this);                                                                     \
        call<void>(engineFunction(), this);                                                        \
    }

namespace XERCES_CPP_NAMESPACE {

struct InputSource {
    ~InputSource();
    void setSystemId(const XMLCh* systemId);
};

RECORD_DESTRUCTOR(InputSource)

void InputSource::setSystemId(const XMLCh* systemId) {
    CALLER.calls(this, "setSystemId", systemId);
    call<void, const XMLCh*>(engineFunction(), this, systemId);
}

} // namespace XERCES_CPP_NAMESPACE

namespace XALAN_CPP_NAMESPACE {

using xercesc::InputSource;

class DOMSupport;
class Function;
class NodeRefListBase;
class PrefixResolver;
class StylesheetConstructionContext;
class StylesheetExecutionContext;
class Writer;
class XMLParserLiaison;
class XObjectFactory;
class XPathEnvSupport;
class XPathFactory;
class XSLTProcessor;
class XalanDocument;
class XalanDocumentBuilder;
class XalanNode;
class XalanOutputStream;
class XalanParsedSource;
class XalanSourceTreeDocument;

struct XalanSourceTreeDOMSupport {
    XalanSourceTreeDOMSupport();
    ~XalanSourceTreeDOMSupport();
};

XalanSourceTreeDOMSupport::XalanSourceTreeDOMSupport() {
    CALLER.constructs(this, "XalanSourceTreeDOMSupport");
    call<void>(engineFunction(), this);
}

RECORD_DESTRUCTOR(XalanSourceTreeDOMSupport)

struct XalanSourceTreeParserLiaison {
    XalanSourceTreeParserLiaison(XalanSourceTreeDOMSupport& support, MemoryManager& memory);
    ~XalanSourceTreeParserLiaison();
    XalanDocument* parseXMLStream(const InputSource& source, const XalanDOMString& identifier);
};

XalanSourceTreeParserLiaison::XalanSourceTreeParserLiaison(XalanSourceTreeDOMSupport& support,
                                                           MemoryManager& memory) {
    CALLER.constructs(this, "XalanSourceTreeParserLiaison", &support);
    call<void, XalanSourceTreeDOMSupport&, MemoryManager&>(engineFunction(), this, support, memory);
}

RECORD_DESTRUCTOR(XalanSourceTreeParserLiaison)

XalanDocument* XalanSourceTreeParserLiaison::parseXMLStream(const InputSource& source,
                                                            const XalanDOMString& identifier) {
    const Caller caller = CALLER;
    caller.calls(this, "parseXMLStream", &source, identifier);
    const auto document = call<XalanDocument*, const InputSource&, const XalanDOMString&>(
        engineFunction(), this, source, identifier);
    caller.receives(document, "parsed stylesheet");
    return document;
}

struct XSLTProcessorEnvSupportDefault {
    XSLTProcessorEnvSupportDefault(MemoryManager& memory, XSLTProcessor* processor);
    ~XSLTProcessorEnvSupportDefault();
    void installExternalFunctionLocal(const XalanDOMString& namespaceUri,
                                      const XalanDOMString& name, const Function& function);
};

XSLTProcessorEnvSupportDefault::XSLTProcessorEnvSupportDefault(MemoryManager& memory,
                                                               XSLTProcessor* processor) {
    CALLER.constructs(this, "XSLTProcessorEnvSupportDefault", processor);
    call<void, MemoryManager&, XSLTProcessor*>(engineFunction(), this, memory, processor);
}

RECORD_DESTRUCTOR(XSLTProcessorEnvSupportDefault)

void XSLTProcessorEnvSupportDefault::installExternalFunctionLocal(
    const XalanDOMString& namespaceUri, const XalanDOMString& name, const Function& function) {
    CALLER.calls(this, "installExternalFunctionLocal", namespaceUri, name, &function);
    call<void, const XalanDOMString&, const XalanDOMString&, const Function&>(
        engineFunction(), this, namespaceUri, name, function);
}

struct FunctionNodeSet {
    explicit FunctionNodeSet(bool convertString);
    ~FunctionNodeSet();
};

FunctionNodeSet::FunctionNodeSet(bool convertString) {
    CALLER.constructs(this, "FunctionNodeSet", convertString);
    call<void, bool>(engineFunction(), this, convertString);
}

RECORD_DESTRUCTOR(FunctionNodeSet)

struct XObjectFactoryDefault {
    using BlockSize = unsigned short;
    XObjectFactoryDefault(MemoryManager& memory, BlockSize strings, BlockSize numbers,
                          BlockSize nodeSets, BlockSize proxies);
    ~XObjectFactoryDefault();
};

XObjectFactoryDefault::XObjectFactoryDefault(MemoryManager& memory, BlockSize strings,
                                             BlockSize numbers, BlockSize nodeSets,
                                             BlockSize proxies) {
    CALLER.constructs(this, "XObjectFactoryDefault", strings, numbers, nodeSets, proxies);
    call<void, MemoryManager&, BlockSize, BlockSize, BlockSize, BlockSize>(
        engineFunction(), this, memory, strings, numbers, nodeSets, proxies);
}

RECORD_DESTRUCTOR(XObjectFactoryDefault)

struct XPathFactoryDefault {
    explicit XPathFactoryDefault(MemoryManager& memory);
    ~XPathFactoryDefault();
};

XPathFactoryDefault::XPathFactoryDefault(MemoryManager& memory) {
    CALLER.constructs(this, "XPathFactoryDefault");
    call<void, MemoryManager&>(engineFunction(), this, memory);
}

RECORD_DESTRUCTOR(XPathFactoryDefault)

struct XSLTInputSource {
    explicit XSLTInputSource(MemoryManager& memory);
    XSLTInputSource(const char* systemId, MemoryManager& memory);
    XSLTInputSource(const XMLCh* systemId, MemoryManager& memory);
    XSLTInputSource(const XalanDOMString& systemId, MemoryManager& memory);
    XSLTInputSource(XalanNode* node, MemoryManager& memory);
    XSLTInputSource(std::istream* stream, MemoryManager& memory);
};

XSLTInputSource::XSLTInputSource(MemoryManager& memory) {
    CALLER.constructs(this, "XSLTInputSource");
    call<void, MemoryManager&>(engineFunction(), this, memory);
}

XSLTInputSource::XSLTInputSource(const char* systemId, MemoryManager& memory) {
    CALLER.constructs(this, "XSLTInputSource", XalanDOMString(systemId));
    call<void, const char*, MemoryManager&>(engineFunction(), this, systemId, memory);
}

XSLTInputSource::XSLTInputSource(const XMLCh* systemId, MemoryManager& memory) {
    CALLER.constructs(this, "XSLTInputSource", systemId);
    call<void, const XMLCh*, MemoryManager&>(engineFunction(), this, systemId, memory);
}

XSLTInputSource::XSLTInputSource(const XalanDOMString& systemId, MemoryManager& memory) {
    CALLER.constructs(this, "XSLTInputSource", systemId);
    call<void, const XalanDOMString&, MemoryManager&>(engineFunction(), this, systemId, memory);
}

XSLTInputSource::XSLTInputSource(XalanNode* node, MemoryManager& memory) {
    CALLER.constructs(this, "XSLTInputSource", node);
    call<void, XalanNode*, MemoryManager&>(engineFunction(), this, node, memory);
}

XSLTInputSource::XSLTInputSource(std::istream* stream, MemoryManager& memory) {
    CALLER.constructs(this, "XSLTInputSource", stream);
    call<void, std::istream*, MemoryManager&>(engineFunction(), this, stream, memory);
}

struct XSLTResultTarget {
    XSLTResultTarget(FormatterListener& formatter, MemoryManager& memory);
    XSLTResultTarget(std::ostream& stream, MemoryManager& memory);
    ~XSLTResultTarget();
};

XSLTResultTarget::XSLTResultTarget(FormatterListener& formatter, MemoryManager& memory) {
    CALLER.constructs(this, "XSLTResultTarget", &formatter);
    call<void, FormatterListener&, MemoryManager&>(engineFunction(), this, formatter, memory);
}

XSLTResultTarget::XSLTResultTarget(std::ostream& stream, MemoryManager& memory) {
    CALLER.constructs(this, "XSLTResultTarget", &stream);
    call<void, std::ostream&, MemoryManager&>(engineFunction(), this, stream, memory);
}

RECORD_DESTRUCTOR(XSLTResultTarget)

struct XSLTEngineImpl {
    XSLTEngineImpl(MemoryManager& memory, XMLParserLiaison& liaison, XPathEnvSupport& environment,
                   DOMSupport& support, XObjectFactory& objects, XPathFactory& paths);
    ~XSLTEngineImpl();
    void setStylesheetParam(const XalanDOMString& name, const XalanDOMString& value);
    void process(const XSLTInputSource& source, const XSLTInputSource& stylesheet,
                 XSLTResultTarget& target, StylesheetConstructionContext& construction,
                 StylesheetExecutionContext& execution);
};

XSLTEngineImpl::XSLTEngineImpl(MemoryManager& memory, XMLParserLiaison& liaison,
                               XPathEnvSupport& environment, DOMSupport& support,
                               XObjectFactory& objects, XPathFactory& paths) {
    CALLER.constructs(this, "XSLTEngineImpl", &liaison, &environment, &support, &objects, &paths);
    call<void, MemoryManager&, XMLParserLiaison&, XPathEnvSupport&, DOMSupport&, XObjectFactory&,
         XPathFactory&>(engineFunction(), this, memory, liaison, environment, support, objects,
                        paths);
}

RECORD_DESTRUCTOR(XSLTEngineImpl)

void XSLTEngineImpl::setStylesheetParam(const XalanDOMString& name, const XalanDOMString& value) {
    CALLER.calls(this, "setStylesheetParam", name, value);
    call<void, const XalanDOMString&, const XalanDOMString&>(engineFunction(), this, name, value);
}

void XSLTEngineImpl::process(const XSLTInputSource& source, const XSLTInputSource& stylesheet,
                             XSLTResultTarget& target, StylesheetConstructionContext& construction,
                             StylesheetExecutionContext& execution) {
    const Caller caller = CALLER;
    // setNode() is inline.
    caller.calls(&source, "holds", nodeOf(source));
    caller.calls(this, "process", &source, &stylesheet, &target, &construction, &execution);
    call<void, const XSLTInputSource&, const XSLTInputSource&, XSLTResultTarget&,
         StylesheetConstructionContext&, StylesheetExecutionContext&>(
        engineFunction(), this, source, stylesheet, target, construction, execution);
}

struct StylesheetConstructionContextDefault {
    using BlockSize = std::size_t;
    StylesheetConstructionContextDefault(MemoryManager& memory, XSLTEngineImpl& engine,
                                         XPathFactory& paths, BlockSize characters,
                                         BlockSize templates, BlockSize simpleParts,
                                         BlockSize pathParts, BlockSize names, BlockSize pointers);
    ~StylesheetConstructionContextDefault();
};

StylesheetConstructionContextDefault::StylesheetConstructionContextDefault(
    MemoryManager& memory, XSLTEngineImpl& engine, XPathFactory& paths, BlockSize characters,
    BlockSize templates, BlockSize simpleParts, BlockSize pathParts, BlockSize names,
    BlockSize pointers) {
    CALLER.constructs(this, "StylesheetConstructionContextDefault", &engine, &paths, characters,
                      templates, simpleParts, pathParts, names, pointers);
    call<void, MemoryManager&, XSLTEngineImpl&, XPathFactory&, BlockSize, BlockSize, BlockSize,
         BlockSize, BlockSize, BlockSize>(engineFunction(), this, memory, engine, paths, characters,
                                          templates, simpleParts, pathParts, names, pointers);
}

RECORD_DESTRUCTOR(StylesheetConstructionContextDefault)

struct StylesheetExecutionContextDefault {
    StylesheetExecutionContextDefault(MemoryManager& memory, XSLTEngineImpl& engine,
                                      XPathEnvSupport& environment, DOMSupport& support,
                                      XObjectFactory& objects, XalanNode* currentNode,
                                      const NodeRefListBase* contextNodes,
                                      const PrefixResolver* prefixes);
    ~StylesheetExecutionContextDefault();
};

StylesheetExecutionContextDefault::StylesheetExecutionContextDefault(
    MemoryManager& memory, XSLTEngineImpl& engine, XPathEnvSupport& environment,
    DOMSupport& support, XObjectFactory& objects, XalanNode* currentNode,
    const NodeRefListBase* contextNodes, const PrefixResolver* prefixes) {
    CALLER.constructs(this, "StylesheetExecutionContextDefault", &engine, &environment, &support,
                      &objects, currentNode, contextNodes, prefixes);
    call<void, MemoryManager&, XSLTEngineImpl&, XPathEnvSupport&, DOMSupport&, XObjectFactory&,
         XalanNode*, const NodeRefListBase*, const PrefixResolver*>(
        engineFunction(), this, memory, engine, environment, support, objects, currentNode,
        contextNodes, prefixes);
}

RECORD_DESTRUCTOR(StylesheetExecutionContextDefault)

struct XPathEvaluator {
    explicit XPathEvaluator(MemoryManager& memory);
    ~XPathEvaluator();
    XObjectPtr evaluate(DOMSupport& support, XalanNode* context, const XalanDOMChar* expression,
                        const PrefixResolver& prefixes);
};

XPathEvaluator::XPathEvaluator(MemoryManager& memory) {
    CALLER.constructs(this, "XPathEvaluator");
    call<void, MemoryManager&>(engineFunction(), this, memory);
}

RECORD_DESTRUCTOR(XPathEvaluator)

XObjectPtr XPathEvaluator::evaluate(DOMSupport& support, XalanNode* context,
                                    const XalanDOMChar* expression,
                                    const PrefixResolver& prefixes) {
    const Caller caller = CALLER;
    caller.calls(this, "evaluate", &support, context, expression, &prefixes);
    XObjectPtr result =
        call<XObjectPtr, DOMSupport&, XalanNode*, const XalanDOMChar*, const PrefixResolver&>(
            engineFunction(), this, support, context, expression, prefixes);
    caller.receives(result.get(), "result");
    return result;
}

struct XalanDocumentPrefixResolver {
    XalanDocumentPrefixResolver(const XalanDocument* document, const XalanDOMString& uri,
                                MemoryManager& memory);
    ~XalanDocumentPrefixResolver();
};

XalanDocumentPrefixResolver::XalanDocumentPrefixResolver(const XalanDocument* document,
                                                         const XalanDOMString& uri,
                                                         MemoryManager& memory) {
    CALLER.constructs(this, "XalanDocumentPrefixResolver", document, uri);
    call<void, const XalanDocument*, const XalanDOMString&, MemoryManager&>(engineFunction(), this,
                                                                            document, uri, memory);
}

RECORD_DESTRUCTOR(XalanDocumentPrefixResolver)

/** What the destructor of XObjectPtr calls. */
void XalanReferenceCountedObject::removeReference(XalanReferenceCountedObject* object) {
    CALLER.destroys(object);
    reinterpret_cast<void (*)(XalanReferenceCountedObject*)>(engineFunction())(object);
}

struct XalanStdOutputStream {
    XalanStdOutputStream(std::ostream& stream, MemoryManager& memory);
    ~XalanStdOutputStream();
};

XalanStdOutputStream::XalanStdOutputStream(std::ostream& stream, MemoryManager& memory) {
    CALLER.constructs(this, "XalanStdOutputStream", &stream);
    call<void, std::ostream&, MemoryManager&>(engineFunction(), this, stream, memory);
}

RECORD_DESTRUCTOR(XalanStdOutputStream)

struct XalanOutputStreamPrintWriter {
    XalanOutputStreamPrintWriter(XalanOutputStream& stream, bool flush);
    ~XalanOutputStreamPrintWriter();
};

XalanOutputStreamPrintWriter::XalanOutputStreamPrintWriter(XalanOutputStream& stream, bool flush) {
    CALLER.constructs(this, "XalanOutputStreamPrintWriter", &stream, flush);
    call<void, XalanOutputStream&, bool>(engineFunction(), this, stream, flush);
}

RECORD_DESTRUCTOR(XalanOutputStreamPrintWriter)

struct FormatterToXML {
    using Text = XalanDOMString;
    FormatterToXML(Writer& writer, const Text& version, bool doIndent, int indent,
                   const Text& encoding, const Text& mediaType, const Text& doctypeSystem,
                   const Text& doctypePublic, bool xmlDeclaration, const Text& standalone,
                   FormatterListener::eFormat format, bool bufferData, MemoryManager& memory);
    ~FormatterToXML();
    void startDocument();
    void endDocument();
};

FormatterToXML::FormatterToXML(Writer& writer, const Text& version, bool doIndent, int indent,
                               const Text& encoding, const Text& mediaType,
                               const Text& doctypeSystem, const Text& doctypePublic,
                               bool xmlDeclaration, const Text& standalone,
                               FormatterListener::eFormat format, bool bufferData,
                               MemoryManager& memory) {
    CALLER.constructs(this, "FormatterToXML", &writer, version, doIndent, indent, encoding,
                      mediaType, doctypeSystem, doctypePublic, xmlDeclaration, standalone,
                      static_cast<int>(format), bufferData);
    call<void, Writer&, const Text&, bool, int, const Text&, const Text&, const Text&, const Text&,
         bool, const Text&, FormatterListener::eFormat, bool, MemoryManager&>(
        engineFunction(), this, writer, version, doIndent, indent, encoding, mediaType,
        doctypeSystem, doctypePublic, xmlDeclaration, standalone, format, bufferData, memory);
}

RECORD_DESTRUCTOR(FormatterToXML)

void FormatterToXML::startDocument() {
    CALLER.calls(this, "startDocument");
    call<void>(engineFunction(), this);
}

void FormatterToXML::endDocument() {
    CALLER.calls(this, "endDocument");
    call<void>(engineFunction(), this);
}

struct FormatterTreeWalker {
    FormatterTreeWalker(FormatterListener& formatter, MemoryManager& memory);
    ~FormatterTreeWalker();
};

FormatterTreeWalker::FormatterTreeWalker(FormatterListener& formatter, MemoryManager& memory) {
    CALLER.constructs(this, "FormatterTreeWalker", &formatter);
    call<void, FormatterListener&, MemoryManager&>(engineFunction(), this, formatter, memory);
}

RECORD_DESTRUCTOR(FormatterTreeWalker)

struct TreeWalker {
    void traverseSubtree(const XalanNode* node);
};

void TreeWalker::traverseSubtree(const XalanNode* node) {
    CALLER.calls(this, "traverseSubtree", node);
    call<void, const XalanNode*>(engineFunction(), this, node);
}

struct FormatterToSourceTree {
    FormatterToSourceTree(MemoryManager& memory, XalanSourceTreeDocument* document);
    ~FormatterToSourceTree();
};

FormatterToSourceTree::FormatterToSourceTree(MemoryManager& memory,
                                             XalanSourceTreeDocument* document) {
    CALLER.constructs(this, "FormatterToSourceTree", document);
    call<void, MemoryManager&, XalanSourceTreeDocument*>(engineFunction(), this, memory, document);
}

RECORD_DESTRUCTOR(FormatterToSourceTree)

struct XalanTransformer {
    XalanDocumentBuilder* createDocumentBuilder(const XalanDOMString& uri);
    void destroyDocumentBuilder(XalanDocumentBuilder* builder);
    int parseSource(const XSLTInputSource& input, const XalanParsedSource*& source,
                    bool useXercesDom);
    int destroyParsedSource(const XalanParsedSource* source);
};

XalanDocumentBuilder* XalanTransformer::createDocumentBuilder(const XalanDOMString& uri) {
    const Caller caller = CALLER;
    caller.calls(this, "createDocumentBuilder", uri);
    const auto builder =
        call<XalanDocumentBuilder*, const XalanDOMString&>(engineFunction(), this, uri);
    caller.receives(builder, "document builder");
    caller.receives(documentOf(builder), "output document");
    return builder;
}

void XalanTransformer::destroyDocumentBuilder(XalanDocumentBuilder* builder) {
    CALLER.calls(this, "destroyDocumentBuilder", builder);
    call<void, XalanDocumentBuilder*>(engineFunction(), this, builder);
}

int XalanTransformer::parseSource(const XSLTInputSource& input, const XalanParsedSource*& source,
                                  bool useXercesDom) {
    const Caller caller = CALLER;
    caller.calls(this, "parseSource", useXercesDom);
    const int result = call<int, const XSLTInputSource&, const XalanParsedSource*&, bool>(
        engineFunction(), this, input, source, useXercesDom);
    caller.receives(source, "parsed source");
    return result;
}

int XalanTransformer::destroyParsedSource(const XalanParsedSource* source) {
    CALLER.calls(this, "destroyParsedSource", source);
    return call<int, const XalanParsedSource*>(engineFunction(), this, source);
}

} // namespace XALAN_CPP_NAMESPACE
