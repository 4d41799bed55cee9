#include "xslt/FurtherResults.h"

#include "xslt/NamespaceScopes.h"
#include "xslt/OutputWriter.h"
#include "xslt/ResultStream.h"
#include "xslt/Text.h"
#include "xslt/Uri.h"

#include <vexa/xslt/Error.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <system_error>
#include <utility>

#include <xalanc/Include/XalanMemMgrAutoPtr.hpp>
#include <xalanc/PlatformSupport/AttributeListImpl.hpp>
#include <xalanc/PlatformSupport/FormatterListener.hpp>
#include <xalanc/PlatformSupport/XalanOutputStreamPrintWriter.hpp>
#include <xalanc/XMLSupport/FormatterToHTML.hpp>
#include <xalanc/XMLSupport/FormatterToText.hpp>
#include <xalanc/XMLSupport/XalanXMLSerializerFactory.hpp>
#include <xalanc/XSLT/Stylesheet.hpp>

using vexa::ErrorKind;
using xalanc::FormatterListener;
using xalanc::XalanDOMString;

namespace {

/** The URI of the file, with symbolic links resolved; empty for what is no file. */
std::string fileUriOf(const vexa::Output& output) {
    const vexa::OutputData& data = vexa::OutputAccess::data(output);
    if (data.kind != vexa::OutputData::Kind::File) {
        return {};
    }
    std::error_code failure;
    const auto real = std::filesystem::weakly_canonical(followLinks(data.path), failure);
    return fileUri(failure ? data.path : real);
}

/** Whether a result that begins with this element is HTML, if the stylesheet does not say. */
bool isHtml(std::u16string_view name, const xalanc::AttributeListType& attributes) {
    constexpr std::u16string_view HTML = u"html";
    const XMLCh* const uri = attributes.getValue(u"xmlns");
    return std::equal(name.begin(), name.end(), HTML.begin(), HTML.end(),
                      [](char16_t c, char16_t lower) { return (c | 0x20) == lower; }) &&
           (!uri || !*uri);
}

/** Declares again, in a result of its own, the namespaces that an enclosing result declares. */
class NamespaceDeclarer : public FormatterListener {
public:
    /** Makes the listener for HTML, or the one for all else. */
    using Create = std::function<FormatterListener&(bool isHtml)>;

    NamespaceDeclarer(Create create, const xalanc::StylesheetExecutionContext& context)
        : FormatterListener(OUTPUT_METHOD_OTHER), m_create(std::move(create)), m_context(context) {}

    void startElement(const XMLCh* const name, xalanc::AttributeListType& attributes) override {
        m_scopes.startElement(attributes);
        std::optional<xalanc::AttributeListImpl> more;
        declare(prefixOf(name), attributes, more);
        for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
            const std::u16string_view prefix = prefixOf(attributes.getName(i));
            if (!prefix.empty() && prefix != u"xmlns") {
                declare(prefix, attributes, more);
            }
        }
        xalanc::AttributeListType& all = more ? *more : attributes;
        next(isHtml(name, all)).startElement(name, all);
    }
    void endElement(const XMLCh* const name) override {
        next().endElement(name);
        m_scopes.endElement();
    }
    void characters(const XMLCh* const text, const size_type length) override {
        next().characters(text, length);
    }
    void charactersRaw(const XMLCh* const text, const size_type length) override {
        next().charactersRaw(text, length);
    }
    void cdata(const XMLCh* const text, const size_type length) override {
        next().cdata(text, length);
    }
    void comment(const XMLCh* const text) override { next().comment(text); }
    void entityReference(const XMLCh* const name) override { next().entityReference(name); }
    void ignorableWhitespace(const XMLCh* const text, const size_type length) override {
        next().ignorableWhitespace(text, length);
    }
    void processingInstruction(const XMLCh* const target, const XMLCh* const data) override {
        next().processingInstruction(target, data);
    }
    void setDocumentLocator(const xercesc::Locator* const /*locator*/) override {}
    void startDocument() override {}
    void endDocument() override { next().endDocument(); }
    void resetDocument() override { next().resetDocument(); }

private:
    /** The first event says what the result is. */
    FormatterListener& next(bool isHtml = false) {
        if (!m_next) {
            m_next = &m_create(isHtml);
            m_next->startDocument();
        }
        return *m_next;
    }

    void declare(std::u16string_view prefix, const xalanc::AttributeListType& attributes,
                 std::optional<xalanc::AttributeListImpl>& more) {
        if (prefix == u"xml" || m_scopes.declares(prefix)) {
            return;
        }
        const XalanDOMString* const uri = m_context.getResultNamespaceForPrefix(
            XalanDOMString(std::u16string(prefix).c_str(), engineMemory()));
        if (!uri || uri->empty()) {
            return;
        }
        if (!more) {
            more.emplace(attributes, engineMemory());
        }
        const std::u16string name = prefix.empty() ? u"xmlns" : u"xmlns:" + std::u16string(prefix);
        more->addAttribute(name.c_str(), u"CDATA", uri->c_str());
        m_scopes.declare(prefix, uri->c_str());
    }

    const Create m_create;
    FormatterListener* m_next = nullptr;
    const xalanc::StylesheetExecutionContext& m_context;
    NamespaceScopes m_scopes;
};

} // namespace

class FurtherResults::Result {
public:
    Result(const vexa::Output& output, const ResultAttributes& attributes, Operation& operation,
           const xalanc::StylesheetExecutionContext& context)
        : m_writer(output, operation),
          m_declarer([this, attributes](
                         bool isHtml) -> FormatterListener& { return create(attributes, isHtml); },
                     context) {}

    FormatterListener& listener() { return m_declarer; }
    void end() { m_printer.flush(); }
    void commit() { m_writer.commit(); }

private:
    FormatterListener& create(const ResultAttributes& attributes, bool isHtml) {
        m_formatter.reset(&engineMemory(), make(attributes, isHtml));
        return *m_formatter;
    }
    FormatterListener* make(const ResultAttributes& attributes, bool isHtml) {
        auto& memory = engineMemory();
        const XalanDOMString utf8(u"UTF-8", memory);
        const XalanDOMString& asked = attributes.get(u"encoding");
        const XalanDOMString& encoding = asked.empty() ? utf8 : asked;
        const XalanDOMString& method = attributes.get(u"method");
        if (method == u"text") {
            return xalanc::FormatterToText::create(memory, m_printer, encoding);
        }
        const XalanDOMString& mediaType = attributes.get(u"media-type");
        const XalanDOMString& system = attributes.get(u"doctype-system");
        const XalanDOMString& publicId = attributes.get(u"doctype-public");
        if (method == u"html" || (isHtml && method.empty())) {
            return xalanc::FormatterToHTML::create(memory, m_printer, encoding, mediaType, system,
                                                   publicId, attributes.isYes(u"indent", true),
                                                   INDENT_OF_HTML, true, false);
        }
        const bool hasDeclaration = !attributes.isYes(u"omit-xml-declaration");
        // The engine writes one for a value of standalone.
        return xalanc::XalanXMLSerializerFactory::create(
            memory, m_printer, XalanDOMString(u"1.0", memory), attributes.isYes(u"indent"), 0,
            encoding, mediaType, system, publicId, hasDeclaration,
            attributes.get(hasDeclaration ? u"standalone" : u""));
    }

    static constexpr int INDENT_OF_HTML = 0;

    OutputWriter m_writer;
    ResultStream m_stream{m_writer};
    xalanc::XalanOutputStreamPrintWriter m_printer{m_stream};
    xalanc::XalanMemMgrAutoPtr<FormatterListener> m_formatter;
    NamespaceDeclarer m_declarer;
};

FurtherResults::FurtherResults(const vexa::DocumentHandler& handler, const vexa::Output* main,
                               Operation& operation)
    : m_handler(handler), m_operation(operation) {
    m_bases.push_back(main ? fileUriOf(*main) : std::string());
    m_uris.insert(m_bases.back());
}

FurtherResults::~FurtherResults() = default;

FormatterListener& FurtherResults::begin(const ResultAttributes& attributes,
                                         const vexa::Location& where,
                                         const xalanc::StylesheetExecutionContext& context) {
    const XalanDOMString& reference = attributes.get(u"href");
    // saxon:output has both.
    const std::string href = toUtf8(reference.empty() ? attributes.get(u"file") : reference);
    if (!m_handler) {
        m_operation.fail(ErrorKind::Denied, "the document '" + href + "' may not be written",
                         where);
    }
    vexa::DocumentSettings settings;
    settings.method = toUtf8(attributes.get(u"method"));
    settings.encoding = toUtf8(attributes.get(u"encoding"));
    settings.mediaType = toUtf8(attributes.get(u"media-type"));
    const vexa::Output output = ask(href, settings, where);
    const std::string uri = fileUriOf(output);
    if (!uri.empty() && !m_uris.insert(uri).second) {
        m_operation.fail(ErrorKind::Output, "the document '" + href + "' is written twice", where);
    }
    m_results.push_back(std::make_unique<Result>(output, attributes, m_operation, context));
    m_open.push_back(m_results.back().get());
    m_bases.push_back(uri.empty() ? href : uri);
    return m_open.back()->listener();
}

vexa::Output FurtherResults::ask(const std::string& href, const vexa::DocumentSettings& settings,
                                 const vexa::Location& where) const {
    try {
        return m_handler(href, m_bases.back(), settings);
    } catch (const vexa::Error& error) {
        if (!error.where().uri.empty()) {
            throw;
        }
        m_operation.fail(error.kind(), error.text(), where);
    }
}

void FurtherResults::end() {
    m_open.back()->end();
    m_open.pop_back();
    m_bases.pop_back();
}

void FurtherResults::commit() {
    for (const auto& result : m_results) {
        result->commit();
    }
}
