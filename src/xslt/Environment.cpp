#include "xslt/Environment.h"

#include "xslt/DocumentElement.h"
#include "xslt/InvalidExpression.h"
#include "xslt/Text.h"
#include "xslt/Uri.h"

#include "engine/EngineMemory.h"

#include <vexa/xslt/Error.h>

#include <cstring>

#include <xalanc/PlatformSupport/XSLException.hpp>
#include <xalanc/XPath/XObjectFactory.hpp>
#include <xalanc/XSLT/XSLTEngineImpl.hpp>

namespace {

constexpr const XMLCh* FUNCTIONS_NAMESPACE = u"http://exslt.org/functions";
constexpr const XMLCh* DYNAMIC_NAMESPACE = u"http://exslt.org/dynamic";

/** Faster than the standard library's comparison, which goes character by character. */
bool areEqual(std::u16string_view left, std::u16string_view right) {
    return left.size() == right.size() &&
           std::memcmp(left.data(), right.data(), left.size() * sizeof(char16_t)) == 0;
}

} // namespace

/** What the functions of EXSLT use. */
class Environment::ExsltAccess : public ExsltHost {
public:
    ExsltAccess(const Environment& environment, xalanc::XPathExecutionContext& context,
                const xalanc::Locator* locator)
        : m_environment(environment), m_context(context), m_locator(locator) {}

    void poll() const override { m_environment.operation().poll(); }
    bool evaluate(std::u16string_view expression, const xalanc::NodeRefListBase& nodes,
                  const Visit& visit) const override {
        try {
            m_environment.m_evaluate.executeForEach(expression, m_context, nodes, m_locator,
                                                    m_environment.operation(), visit);
            return true;
        } catch (const xalanc::XSLException& exception) {
            m_environment.reportWrongExpression(exception, m_locator);
            return false;
        }
    }

private:
    const Environment& m_environment;
    xalanc::XPathExecutionContext& m_context;
    const xalanc::Locator* m_locator;
};

void Environment::begin(Operation& operation, Sources& sources) {
    m_operation = &operation;
    m_sources = &sources;
}

void Environment::finish() {
    m_documents.clear();
    m_uris.clear();
    m_kept.clear();
    m_callees.clear();
    m_evaluate.finish();
    m_operation = nullptr;
    m_sources = nullptr;
}

void Environment::keep(const DocumentPtr& document) {
    const auto [entry, isNew] = m_uris.try_emplace(document->tree());
    if (isNew) {
        entry->second = toEngineText(document->uri(), engineMemory());
        m_kept.push_back(document);
    }
}

void Environment::add(const DocumentPtr& document) {
    keep(document);
    if (!document->uri().empty()) {
        m_documents.emplace(document->uri(), document);
    }
}

xalanc::XalanDocument* Environment::parseXML(xercesc::MemoryManager& /*memory*/,
                                             const xalanc::XalanDOMString& url,
                                             const xalanc::XalanDOMString& base,
                                             xalanc::ErrorHandler* /*errors*/) {
    return m_operation->keepingException([&] { return find(toUtf8(url), toUtf8(base)); });
}

xalanc::XalanDocument* Environment::find(const std::string& reference, const std::string& base) {
    const std::string uri = resolveUri(reference, base);
    const auto known = m_documents.find(uri);
    if (known != m_documents.end()) {
        return known->second->tree();
    }
    const DocumentPtr document = parse(uri, base);
    if (!document) {
        return nullptr;
    }
    m_documents.emplace(uri, document);
    keep(document);
    return document->tree();
}

/** @return null where the language lets the transform go on: with a warning */
Environment::DocumentPtr Environment::parse(const std::string& uri, const std::string& base) {
    try {
        const Sources::Opened opened =
            m_sources->open(uri, base, Reference::Document, m_operation->place());
        return m_parser.parse(*opened.source, opened.uri, *m_operation, *m_sources);
    } catch (const vexa::Error& error) {
        switch (error.kind()) {
        case vexa::ErrorKind::Input:
        case vexa::ErrorKind::Parse:
            m_operation->report(vexa::Severity::Warning, error.text(), error.where());
            return nullptr;
        default:
            throw;
        }
    }
}

xalanc::XalanDocument* Environment::getSourceDocument(const xalanc::XalanDOMString& uri) const {
    const auto known = m_operation->keepingException([&] { return m_documents.find(toUtf8(uri)); });
    return known == m_documents.end() ? nullptr : known->second->tree();
}

void Environment::setSourceDocument(const xalanc::XalanDOMString& /*uri*/,
                                    xalanc::XalanDocument* /*document*/) {
    // All documents of a run come from parseXML, which keeps them.
}

const xalanc::XalanDOMString&
Environment::findURIFromDoc(const xalanc::XalanDocument* document) const {
    const auto known = m_uris.find(document);
    return known == m_uris.end() ? m_noUri : known->second;
}

void Environment::installExternalFunctionLocal(const xalanc::XalanDOMString& uri,
                                               const xalanc::XalanDOMString& name,
                                               const xalanc::Function& function) {
    if (findExsltFunction({uri.c_str(), uri.length()}, {name.c_str(), name.length()}) ||
        m_engineFunctions.find(uri, name)) {
        m_replaced.emplace(uri.c_str(), name.c_str());
    }
    XSLTProcessorEnvSupportDefault::installExternalFunctionLocal(uri, name, function);
}

bool Environment::functionAvailable(const xalanc::XalanDOMString& uri,
                                    const xalanc::XalanDOMString& name) const {
    return findCallee(uri, name).exslt ||
           XSLTProcessorEnvSupportDefault::functionAvailable(uri, name);
}

const Environment::Callee& Environment::findCallee(const xalanc::XalanDOMString& uri,
                                                   const xalanc::XalanDOMString& name) const {
    const std::u16string_view uriView(uri.c_str(), uri.length());
    const std::u16string_view nameView(name.c_str(), name.length());
    Callee& callee = m_callees[&name];
    if (!areEqual(callee.name, nameView) || !areEqual(callee.uri, uriView)) {
        callee = {std::u16string(uriView), std::u16string(nameView)};
        if (m_replaced.count({callee.uri, callee.name}) == 0) {
            callee.exslt = findExsltFunction(uriView, nameView);
            callee.engines = callee.exslt ? nullptr : m_engineFunctions.find(uri, name);
        }
    }
    return callee;
}

void Environment::reportWrongExpression(const xalanc::XSLException& exception,
                                        const xalanc::Locator* locator) const {
    m_operation->keepingException([&] {
        m_operation->report(vexa::Severity::Error, cleanText(toUtf8(exception.getMessage())),
                            toLocation(locator));
    });
}

xalanc::XObjectPtr Environment::extFunction(xalanc::XPathExecutionContext& context,
                                            const xalanc::XalanDOMString& uri,
                                            const xalanc::XalanDOMString& name,
                                            xalanc::XalanNode* node,
                                            const XObjectArgVectorType& arguments,
                                            const xalanc::Locator* locator) const {
    // The engine's comparisons measure texts first.
    const Callee& callee = findCallee(uri, name);
    if (areEqual(callee.uri, InvalidExpression::NAMESPACE)) {
        m_operation->fail(vexa::ErrorKind::Transform, toUtf8(arguments[0]->str(context)),
                          toLocation(locator));
    }
    const bool isEvaluate = m_evaluates && callee.name == u"evaluate" && arguments.size() == 1;
    const bool isDynamic = isEvaluate && uri == DYNAMIC_NAMESPACE;
    try {
        if (isDynamic || (isEvaluate && uri == xalanc::XSLTEngineImpl::getXalanXSLNameSpaceURL())) {
            return m_evaluate.execute(arguments[0]->str(context), context, node, locator,
                                      *m_operation);
        }
        if (callee.exslt) {
            const ExsltAccess host(*this, context, locator);
            return callExsltFunction(*callee.exslt, {context, node, arguments, locator, host});
        }
        if (callee.engines) {
            return callee.engines->execute(context, node, arguments, locator);
        }
        return XSLTProcessorEnvSupportDefault::extFunction(context, uri, name, node, arguments,
                                                           locator);
    } catch (const xalanc::XSLException& exception) {
        const std::string text = cleanText(toUtf8(exception.getMessage()));
        if (isDynamic) {
            // Where the expression is wrong, this one gives an empty node-set.
            reportWrongExpression(exception, locator);
            xalanc::XPathExecutionContext::BorrowReturnMutableNodeRefList none(context);
            return context.getXObjectFactory().createNodeSet(none);
        }
        if (!isEvaluate && !functionAvailable(uri, name)) {
            m_operation->fail(vexa::ErrorKind::Compile,
                              "unknown function '" + toUtf8(name) + "' of namespace '" +
                                  toUtf8(uri) + "'",
                              toLocation(locator));
        }
        if (exception.getURI().empty()) {
            m_operation->fail(vexa::ErrorKind::Transform, text, m_operation->place());
        }
        throw;
    }
}

bool Environment::elementAvailable(const xalanc::XalanDOMString& uri,
                                   const xalanc::XalanDOMString& name) const {
    return DocumentElement::isNamed({uri.c_str(), uri.length()}, {name.c_str(), name.length()}) ||
           (uri == FUNCTIONS_NAMESPACE && (name == u"function" || name == u"result"));
}
