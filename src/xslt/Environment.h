/**
 * @file
 * The documents that one run reads.
 */
#pragma once

#include "xslt/DocumentData.h"
#include "xslt/DocumentParser.h"
#include "xslt/EvaluateFunction.h"
#include "xslt/Sources.h"

#include "exslt/ExsltFunctions.h"

#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include <xalanc/PlatformSupport/XSLException.hpp>
#include <xalanc/XPath/XPathEnvSupportDefault.hpp>
#include <xalanc/XSLT/XSLTProcessorEnvSupportDefault.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDOMSupport.hpp>

/** Trees that know their unparsed entities themselves, whoever parsed them. */
class TreeSupport : public xalanc::XalanSourceTreeDOMSupport {
public:
    const xalanc::XalanDOMString&
    getUnparsedEntityURI(const xalanc::XalanDOMString& name,
                         const xalanc::XalanDocument& document) const override {
        return static_cast<const xalanc::XalanSourceTreeDocument&>(document).getUnparsedEntityURI(
            name);
    }
};

/**
 * Reads what document() asks for, through the sources of the operation, and keeps it for the rest
 * of the run.
 */
class Environment : public xalanc::XSLTProcessorEnvSupportDefault {
public:
    using DocumentPtr = vexa::DocumentAccess::Ptr;

    Environment(xercesc::MemoryManager& memory, DocumentParser& parser)
        : XSLTProcessorEnvSupportDefault(memory, nullptr), m_parser(parser),
          m_engineFunctions(memory) {}

    /** Leaves evaluate() to a function that is installed. */
    void leaveEvaluateToHost() { m_evaluates = false; }

    /** Such a function comes before one of EXSLT that has the same name. */
    void installExternalFunctionLocal(const xalanc::XalanDOMString& uri,
                                      const xalanc::XalanDOMString& name,
                                      const xalanc::Function& function) override;
    bool functionAvailable(const xalanc::XalanDOMString& uri,
                           const xalanc::XalanDOMString& name) const override;

    /** Begins a run. All must live until finish(). */
    void begin(Operation& operation, Sources& sources);
    void finish();

    Operation& operation() const { return *m_operation; }

    /** A document that the run knows: document() finds it by its URI. */
    void add(const DocumentPtr& document);
    /** Keeps a document alive until the run ends, as a base of references. */
    void keep(const DocumentPtr& document);

    xalanc::XalanDocument* parseXML(xercesc::MemoryManager& memory,
                                    const xalanc::XalanDOMString& url,
                                    const xalanc::XalanDOMString& base,
                                    xalanc::ErrorHandler* errors) override;
    xalanc::XalanDocument* getSourceDocument(const xalanc::XalanDOMString& uri) const override;
    void setSourceDocument(const xalanc::XalanDOMString& uri,
                           xalanc::XalanDocument* document) override;
    const xalanc::XalanDOMString&
    findURIFromDoc(const xalanc::XalanDocument* document) const override;
    xalanc::XObjectPtr extFunction(xalanc::XPathExecutionContext& context,
                                   const xalanc::XalanDOMString& uri,
                                   const xalanc::XalanDOMString& name, xalanc::XalanNode* node,
                                   const XObjectArgVectorType& arguments,
                                   const xalanc::Locator* locator) const override;

    bool elementAvailable(const xalanc::XalanDOMString& uri,
                          const xalanc::XalanDOMString& name) const override;

private:
    class ExsltAccess;

    /** What a name of a function stands for: one of these, or neither. */
    struct Callee {
        std::u16string uri;
        std::u16string name;
        const ExsltFunction* exslt = nullptr;
        const xalanc::Function* engines = nullptr;
    };
    /** The functions that the engine has for all. */
    class EngineFunctions : public xalanc::XPathEnvSupportDefault {
    public:
        using XPathEnvSupportDefault::XPathEnvSupportDefault;

        const xalanc::Function* find(const xalanc::XalanDOMString& uri,
                                     const xalanc::XalanDOMString& name) const {
            return findFunction(uri, name);
        }
    };

    void reportWrongExpression(const xalanc::XSLException& exception,
                               const xalanc::Locator* locator) const;
    /** Of one that was called in this run already, without a search. */
    const Callee& findCallee(const xalanc::XalanDOMString& uri,
                             const xalanc::XalanDOMString& name) const;
    xalanc::XalanDocument* find(const std::string& reference, const std::string& base);
    DocumentPtr parse(const std::string& uri, const std::string& base);

    DocumentParser& m_parser;
    bool m_evaluates = true;
    EngineFunctions m_engineFunctions;
    /** Those of EXSLT and of the engine that the host has replaced: their URIs and names. */
    std::set<std::pair<std::u16string, std::u16string>> m_replaced;
    mutable EvaluateFunction m_evaluate;
    /** By the place of the name, which an expression keeps. Another one may be there later. */
    mutable std::unordered_map<const void*, Callee> m_callees;
    Operation* m_operation = nullptr;
    Sources* m_sources = nullptr;
    std::map<std::string, DocumentPtr> m_documents;
    std::vector<DocumentPtr> m_kept;
    std::map<const xalanc::XalanDocument*, xalanc::XalanDOMString> m_uris;
    xalanc::XalanDOMString m_noUri;
};
