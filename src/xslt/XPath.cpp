#include <vexa/xslt/XPath.h>

#include "xslt/BorrowedLists.h"
#include "xslt/ConstructionContext.h"
#include "xslt/EngineUse.h"
#include "xslt/Environment.h"
#include "xslt/MemoryPool.h"
#include "xslt/OperationProblems.h"
#include "xslt/Text.h"
#include "xslt/ValueExchange.h"

#include "engine/EngineMemory.h"
#include "engine/ExpressionGuard.h"
#include "exslt/ExsltFunctions.h"

#include <vexa/xslt/Error.h>

#include <utility>

#include <xalanc/DOMSupport/DOMServices.hpp>
#include <xalanc/PlatformSupport/PrefixResolver.hpp>
#include <xalanc/XPath/NodeRefListBase.hpp>
#include <xalanc/XPath/XObjectFactoryDefault.hpp>
#include <xalanc/XPath/XPath.hpp>
#include <xalanc/XPath/XPathEnvSupportDefault.hpp>
#include <xalanc/XPath/XPathExecutionContextDefault.hpp>
#include <xalanc/XPath/XPathFactoryDefault.hpp>
#include <xalanc/XPath/XPathProcessorImpl.hpp>

using xalanc::XalanDOMString;

namespace {

/** The prefixes that the host has given, and "xml". */
class HostPrefixes : public xalanc::PrefixResolver {
public:
    HostPrefixes(const vexa::Namespaces& namespaces, xercesc::MemoryManager& memory) {
        for (const auto& [prefix, uri] : namespaces) {
            m_uris.emplace(toUtf16(prefix), toEngineText(uri, memory));
        }
    }

    const XalanDOMString* getNamespaceForPrefix(const XalanDOMString& prefix) const override {
        if (prefix == xalanc::DOMServices::s_XMLString) {
            return &xalanc::DOMServices::s_XMLNamespaceURI;
        }
        const auto known = m_uris.find(std::u16string(prefix.c_str(), prefix.length()));
        return known == m_uris.end() ? nullptr : &known->second;
    }
    const XalanDOMString& getURI() const override { return m_noUri; }

private:
    std::map<std::u16string, XalanDOMString> m_uris;
    XalanDOMString m_noUri;
};

/** Evaluates with the variables of the host. The engine's own takes an unknown one for empty. */
class EvaluationContext : public xalanc::XPathExecutionContextDefault {
public:
    EvaluationContext(Environment& environment, xalanc::DOMSupport& trees,
                      xalanc::XObjectFactory& objects, ValueExchange& values,
                      const vexa::Variables& variables)
        : XPathExecutionContextDefault(environment, trees, objects), m_environment(environment),
          m_values(values), m_variables(variables) {}

    const xalanc::XObjectPtr getVariable(const xalanc::XalanQName& name,
                                         const xalanc::Locator* /*locator*/) override {
        const std::string uri = toUtf8(name.getNamespace());
        const std::string local = toUtf8(name.getLocalPart());
        const auto known = m_variables.find(uri.empty() ? local : "{" + uri + "}" + local);
        if (known == m_variables.end()) {
            m_environment.operation().fail(vexa::ErrorKind::Transform,
                                           "the variable '" + local + "' is not declared");
        }
        return m_values.toEngine(known->second, *this);
    }

    xalanc::MutableNodeRefList* borrowMutableNodeRefList() override {
        m_environment.operation().poll();
        xalanc::MutableNodeRefList* const list =
            XPathExecutionContextDefault::borrowMutableNodeRefList();
        m_lists.add(list);
        return list;
    }
    bool returnMutableNodeRefList(xalanc::MutableNodeRefList* list) override {
        m_lists.remove(list);
        return XPathExecutionContextDefault::returnMutableNodeRefList(list);
    }

    void problem(eSource source, eClassification classification, const XalanDOMString& text,
                 const xalanc::Locator* locator, const xalanc::XalanNode* node) override {
        OperationProblems(m_environment.operation())
            .problem(source, classification, text, locator, node);
        if (classification == eError) {
            m_environment.operation().fail(vexa::ErrorKind::Transform, toUtf8(text));
        }
    }
    void problem(eSource source, eClassification classification, const XalanDOMString& text,
                 const xalanc::XalanNode* node) override {
        problem(source, classification, text, nullptr, node);
    }

private:
    Environment& m_environment;
    ValueExchange& m_values;
    const vexa::Variables& m_variables;
    BorrowedLists m_lists;
};

bool isNameCharacter(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return std::isalnum(byte) || byte >= 0x80 || c == '_' || c == '-' || c == '.' || c == ':';
}

/**
 * Calls `visit` with the name of each function that an expression calls, and of each node test that
 * looks like a call.
 */
template <typename Visitor>
void visitCalls(std::string_view expression, Visitor visit) {
    while (!expression.empty()) {
        const char c = expression.front();
        std::size_t length = 1;
        if (c == '"' || c == '\'') {
            length = std::min(expression.find(c, 1), expression.size() - 1) + 1;
        } else if (isNameCharacter(c)) {
            while (length < expression.size() && isNameCharacter(expression[length])) {
                ++length;
            }
            const auto next = expression.find_first_not_of(" \t\r\n", length);
            if (next != std::string_view::npos && expression[next] == '(') {
                visit(expression.substr(0, length));
            }
        }
        expression.remove_prefix(length);
    }
}

/** The context of an expression is one node. */
class OneNode : public xalanc::NodeRefListBase {
public:
    explicit OneNode(xalanc::XalanNode& node) : m_node(node) {}

    xalanc::XalanNode* item(size_type index) const override {
        return index == 0 ? &m_node : nullptr;
    }
    size_type getLength() const override { return 1; }
    size_type indexOf(const xalanc::XalanNode* node) const override {
        return node == &m_node ? 0 : npos;
    }

private:
    xalanc::XalanNode& m_node;
};

} // namespace

namespace vexa {

/** A compiled expression with all of its memory. */
class XPath::Data {
public:
    explicit Data(const Namespaces& namespaces)
        : m_prefixes(namespaces, m_memory), m_construction(m_memory), m_factory(m_memory),
          m_expression(m_factory.create()) {}

    void compile(const std::string& expression, Operation& operation) {
        refuseNul(expression);
        visitCalls(expression, [&](std::string_view name) {
            if (!isKnownFunction(name)) {
                operation.fail(ErrorKind::Compile,
                               "the function '" + std::string(name) + "' is not known here");
            }
        });
        const XalanDOMString text = toEngineText(expression, m_memory);
        rejectTooDeepExpression({text.c_str(), text.length()});
        xalanc::XPathProcessorImpl processor(m_memory);
        const MemoryPool::CleanUp cleanUp(m_memory);
        processor.initXPath(*m_expression, m_construction, text, m_prefixes);
        m_memory.seal();
    }

    Value evaluate(const Node& node, const Options& options, const Variables& variables) const {
        Operation operation(options);
        MemoryPool memory;
        memory.setOperation(&operation);
        return operation.run(ErrorKind::Transform, [&] {
            TreeSupport trees;
            DocumentParser parser;
            Sources sources(operation);
            Environment environment(memory, parser);
            environment.begin(operation, sources);
            environment.add(NodeAccess::owner(node));
            ValueExchange values(environment);
            xalanc::XObjectFactoryDefault objects(memory);
            EvaluationContext context(environment, trees, objects, values, variables);
            const MemoryPool::CleanUp cleanUp(memory);
            xalanc::XalanNode* const contextNode = NodeAccess::node(node);
            const OneNode contextList(*contextNode);
            const xalanc::XObjectPtr result =
                m_expression->execute(contextNode, m_prefixes, contextList, context);
            return values.toHost(*result, context);
        });
    }

private:
    /**
     * The engine knows the functions of stylesheets in every expression, and looks for those with a
     * prefix only when it evaluates.
     */
    bool isKnownFunction(std::string_view name) const {
        const auto colon = name.rfind(':');
        if (colon == std::string_view::npos) {
            return name != "key" && name != "current";
        }
        if (colon > 0 && name[colon - 1] == ':') {
            return true; // a node test after its axis
        }
        auto& memory = engineMemory();
        const XalanDOMString* const uri =
            m_prefixes.getNamespaceForPrefix(toEngineText(name.substr(0, colon), memory));
        const XalanDOMString localName = toEngineText(name.substr(colon + 1), memory);
        // The engine's message on a prefix says more.
        return !uri ||
               findExsltFunction({uri->c_str(), uri->length()},
                                 {localName.c_str(), localName.length()}) ||
               xalanc::XPathEnvSupportDefault(memory).functionAvailable(*uri, localName);
    }

    EngineUse m_engines = useEngines();
    MemoryPool m_memory;
    HostPrefixes m_prefixes;
    /** Has the names in the expression. */
    ConstructionContext m_construction;
    xalanc::XPathFactoryDefault m_factory;
    /** Belongs to the factory. */
    xalanc::XPath* m_expression;
};

XPath::XPath() noexcept = default;

XPath::XPath(std::shared_ptr<const Data> data) noexcept : m_data(std::move(data)) {}

// NOLINTNEXTLINE(performance-unnecessary-value-param): so is its interface
XPath XPath::compile(std::string expression, Namespaces namespaces) {
    const auto data = std::make_shared<Data>(namespaces);
    const Options options;
    Operation operation(options);
    operation.run(ErrorKind::Compile, [&] { data->compile(expression, operation); });
    return XPath(data);
}

Value XPath::evaluate(const Document& document, const Options& options) const {
    return evaluate(document.root(), options);
}

Value XPath::evaluate(const Node& node, const Options& options) const {
    return evaluate(node, options, {});
}

Value XPath::evaluate(const Document& document, const Options& options,
                      const Variables& variables) const {
    return evaluate(document.root(), options, variables);
}

Value XPath::evaluate(const Node& node, const Options& options, const Variables& variables) const {
    if (!m_data) {
        throw Error(ErrorKind::Usage, "the expression is empty");
    }
    return m_data->evaluate(node, options, variables);
}

} // namespace vexa
