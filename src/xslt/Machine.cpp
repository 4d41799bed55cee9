#include "xslt/Machine.h"

#include "xslt/BorrowedLists.h"
#include "xslt/CallData.h"
#include "xslt/NamespaceScopes.h"
#include "xslt/OperationProblems.h"
#include "xslt/RunContext.h"
#include "xslt/StripAnswers.h"
#include "xslt/Text.h"

#include "engine/ExpressionGuard.h"
#include "engine/IcuCollation.h"
#include "functions/BuiltInFunctions.h"

#include <vexa/VEXAConfig.h>
#include <vexa/xslt/Error.h>

#include <algorithm>
#include <utility>
#include <vector>

#include <xalanc/DOMSupport/DOMServices.hpp>
#include <xalanc/Include/XalanMemoryManagement.hpp>
#include <xalanc/XPath/Function.hpp>
#include <xalanc/XPath/XPath.hpp>
#include <xalanc/XPath/XPathProcessorImpl.hpp>
#include <xalanc/XPath/XalanQNameByValue.hpp>
#include <xalanc/XSLT/ElemTemplateElement.hpp>
#include <xalanc/XSLT/ElemVariable.hpp>
#include <xalanc/XSLT/StylesheetConstructionContext.hpp>
#include <xalanc/XSLT/TopLevelArg.hpp>
#include <xalanc/XSLT/XSLTInputSource.hpp>
#include <xalanc/XalanExtensions/FunctionNodeSet.hpp>

using vexa::ErrorKind;
using xalanc::XalanDOMString;
using xalanc::XObjectPtr;

/** Executes the stylesheet, with the parameters of the host. */
class Machine::Context : public RunContext {
public:
    explicit Context(Machine& machine)
        : RunContext(machine.m_memory, machine.m_processor, machine.m_environment, machine.m_trees,
                     machine.m_objects),
          m_machine(machine), m_parameters(machine.m_memory) {
        installCollationCompareFunctor(&m_collation);
        installFormatNumberFunctor(&machine.m_numberFormat);
    }

    void reset() override {
        // The base class resets the factory that made the values of the parameters.
        m_parameters.clear();
        RunContext::reset();
        m_madeUpPrefixes = 0;
        m_depth = 0;
        m_lists.clear();
        if (m_machine.m_stylesheet.root().hasPreserveOrStripSpaceElements()) {
            m_stripAnswers.clear();
        }
    }

    void pushInvoker(const xalanc::ElemTemplateElement* invoker) override {
        m_invoker = invoker;
        operation().poll();
        operation().checkDepth(++m_depth);
        m_invoker = nullptr;
        RunContext::pushInvoker(invoker);
    }
    void popInvoker() override {
        --m_depth;
        RunContext::popInvoker();
    }
    void pushContextMarker() override {
        operation().poll();
        RunContext::pushContextMarker();
    }

    /**
     * The engine calls it with the frame of the global variables while it executes an attribute
     * set, and would neither find the set's own variables there nor global ones that were evaluated
     * since. A frame of its own does both.
     */
    void pushCurrentStackFrameIndex(int index) override {
        const bool isGlobal = index == static_cast<int>(getGlobalStackFrameIndex());
        RunContext::pushCurrentStackFrameIndex(isGlobal ? getCurrentStackFrameIndex() : index);
        if (isGlobal) {
            RunContext::pushContextMarker();
        }
        m_framesOfItsOwn.push_back(isGlobal);
    }
    void popCurrentStackFrameIndex() override {
        if (m_framesOfItsOwn.back()) {
            RunContext::popContextMarker();
        }
        m_framesOfItsOwn.pop_back();
        RunContext::popCurrentStackFrameIndex();
    }

    /**
     * A template that is called by its name leaves the current template rule as it is. The invoker
     * is not always the call: where it stands alone the engine executes the template in its place.
     */
    void pushCurrentTemplate(const xalanc::ElemTemplate* current) override {
        const xalanc::ElemTemplateElement* const invoker =
            current && m_depth != 0 ? getInvoker() : nullptr;
        const int token = invoker ? invoker->getXSLToken() : Construction::ELEMNAME_APPLY_TEMPLATES;
        const bool isRule = token == Construction::ELEMNAME_APPLY_TEMPLATES ||
                            token == Construction::ELEMNAME_APPLY_IMPORTS;
        RunContext::pushCurrentTemplate(isRule ? current : getCurrentTemplate());
    }
    xalanc::MutableNodeRefList* borrowMutableNodeRefList() override {
        operation().poll();
        xalanc::MutableNodeRefList* const list = RunContext::borrowMutableNodeRefList();
        m_lists.add(list);
        return list;
    }
    bool returnMutableNodeRefList(xalanc::MutableNodeRefList* list) override {
        m_lists.remove(list);
        return RunContext::returnMutableNodeRefList(list);
    }

    /** The engine writes an XML declaration for a value of standalone, too. */
    xalanc::FormatterListener*
    createFormatterToXML(xalanc::Writer& writer, const XalanDOMString& version, bool indents,
                         int indent, const XalanDOMString& encoding,
                         const XalanDOMString& mediaType, const XalanDOMString& system,
                         const XalanDOMString& publicId, bool hasDeclaration,
                         const XalanDOMString& standalone) override {
        return RunContext::createFormatterToXML(
            writer, version, indents, indent, encoding, mediaType, system, publicId, hasDeclaration,
            hasDeclaration ? standalone : XalanDOMString(getMemoryManager()));
    }

    void beginCreateXResultTreeFrag(xalanc::XalanNode* source) override {
        xalanc::FormatterToSourceTree& writer = m_machine.m_fragments.begin(
            *getSourceTreeFactory(getMemoryManager()), &m_machine.m_processor);
        // Inside of xsl:attribute the engine copies texts only.
        pushCopyTextNodesOnly(false);
        pushOutputContext(&writer);
        writer.startDocument();
        pushCurrentNode(source);
    }
    const XObjectPtr endCreateXResultTreeFrag() override {
        getFormatterListener()->endDocument();
        const XObjectPtr value(m_machine.m_fragments.end());
        popCurrentNode();
        popOutputContext();
        popCopyTextNodesOnly();
        return value;
    }

    // RunContext
    void beginFurtherResult(const ResultAttributes& attributes,
                            const xercesc::Locator* locator) override {
        xalanc::FormatterListener* const listener = operation().keepingException([&] {
            return &m_machine.m_furtherResults->begin(attributes, toLocation(locator), *this);
        });
        pushCopyTextNodesOnly(false);
        pushOutputContext(listener);
        listener->startDocument();
    }
    void endFurtherResult() override {
        getFormatterListener()->endDocument();
        popOutputContext();
        popCopyTextNodesOnly();
        m_machine.m_furtherResults->end();
    }

    Trace* trace() const override { return nullptr; }
    void setFunctionResult(const XObjectPtr& result) override {
        if (!m_functionResults.empty()) {
            m_functionResults.back() = result;
        }
    }

    using RunContext::functionAvailable;
    bool functionAvailable(const XalanDOMString& name,
                           const xalanc::Locator* locator) const override {
        const std::u16string_view whole(name.c_str(), name.length());
        const std::u16string prefix(prefixOf(whole));
        const std::u16string local(localPart(whole));
        const XalanDOMString* const uri = getPrefixResolver()->getNamespaceForPrefix(
            XalanDOMString(prefix.c_str(), m_machine.m_memory));
        return (!prefix.empty() && uri &&
                m_machine.m_stylesheet.findFunction(
                    *uri, XalanDOMString(local.c_str(), m_machine.m_memory))) ||
               RunContext::functionAvailable(name, locator);
    }
    const XObjectPtr extFunction(const XalanDOMString& uri, const XalanDOMString& name,
                                 xalanc::XalanNode* node, const XObjectArgVectorType& arguments,
                                 const xalanc::Locator* locator) override {
        const auto* const function = m_machine.m_stylesheet.findFunction(uri, name);
        return function ? call(*function, toUtf8(name), node, arguments, locator)
                        : RunContext::extFunction(uri, name, node, arguments, locator);
    }

    /** xsl:strip-space is about source documents; the engine strips trees in variables, too. */
    bool shouldStripSourceNode(const xalanc::XalanText& text) override {
        return m_stripAnswers.isStripped(text, m_machine.m_stylesheet.root()) &&
               text.getOwnerDocument() != getSourceTreeFactory(getMemoryManager());
    }

    /** For xsl:number. The engine's own prints errors, and is asked for "&name" at attributes. */
    const xalanc::XPath* createMatchPattern(const XalanDOMString& pattern,
                                            const xalanc::PrefixResolver& resolver) override {
        XalanDOMString corrected(pattern, getMemoryManager());
        if (!corrected.empty() && corrected[0] == u'&') {
            corrected[0] = u'@';
        }
        xalanc::XPathProcessorImpl processor(getMemoryManager());
        xalanc::XPath* const compiled = m_machine.m_xpaths.create();
        processor.initMatchPattern(*compiled, m_machine.m_construction, corrected, resolver);
        return compiled;
    }

    using RunContext::addResultAttribute;
    void addResultAttribute(const XalanDOMString& name, const XalanDOMString& value) override {
        // Each one is compared with all others of its element.
        operation().poll();
        RunContext::addResultAttribute(name, value);
    }

    /** For xsl:copy-of. The engine's own cannot be stopped. */
    void cloneToResultTree(const xalanc::XalanNode& top, const xalanc::Locator* locator) override {
        if (top.getNodeType() == xalanc::XalanNode::DOCUMENT_FRAGMENT_NODE ||
            getCopyTextNodesOnly()) {
            RunContext::cloneToResultTree(top, locator);
            return;
        }
        const xalanc::XalanNode* node = &top;
        while (node) {
            operation().poll();
            const auto type = node->getNodeType();
            if (type != xalanc::XalanNode::ATTRIBUTE_NODE) {
                flushPending();
            }
            cloneToResultTree(*node, type, false, true, locator);
            const xalanc::XalanNode* next = node->getFirstChild();
            while (!next) {
                if (node->getNodeType() == xalanc::XalanNode::ELEMENT_NODE) {
                    endElement(node->getNodeName().c_str());
                }
                if (node == &top) {
                    break;
                }
                next = node->getNextSibling();
                if (!next) {
                    node = node->getParentNode();
                }
            }
            node = next;
        }
    }
    void cloneToResultTree(const xalanc::XalanNode& node, xalanc::XalanNode::NodeType type,
                           bool overridesStrip, bool clonesAttributes,
                           const xalanc::Locator* locator) override {
        if (type == xalanc::XalanNode::ATTRIBUTE_NODE && isElementPending() &&
            addWithOtherPrefix(node)) {
            return;
        }
        const auto* const attributes = clonesAttributes && type == xalanc::XalanNode::ELEMENT_NODE
                                           ? node.getAttributes()
                                           : nullptr;
        if (!attributes || attributes->getLength() < MANY_ATTRIBUTES) {
            RunContext::cloneToResultTree(node, type, overridesStrip, clonesAttributes, locator);
            return;
        }
        RunContext::cloneToResultTree(node, type, overridesStrip, false, locator);
        copyNamespaceAttributes(node);
        for (XMLSize_t i = 0; i < attributes->getLength(); ++i) {
            // Each one is compared with all others of its element.
            operation().poll();
            const xalanc::XalanNode& attribute = *attributes->item(i);
            if (attribute.getNamespaceURI() != xalanc::DOMServices::s_XMLNamespacePrefixURI) {
                RunContext::cloneToResultTree(attribute, xalanc::XalanNode::ATTRIBUTE_NODE,
                                              overridesStrip, true, locator);
            }
        }
    }

    void pushTopLevelVariables(const ParamVectorType& /*parameters*/) override {
        // The engine keeps pointers to them for the whole run.
        m_parameters.reserve(m_machine.m_settings.parameters.size());
        for (const auto& [name, value] : m_machine.m_settings.parameters) {
            const xalanc::XalanQNameByValue qname(toEngineText(name.first, getMemoryManager()),
                                                  toEngineText(name.second, getMemoryManager()),
                                                  getMemoryManager());
            m_parameters.push_back(xalanc::TopLevelArg(getMemoryManager(), qname,
                                                       m_machine.m_values.toEngine(value, *this)));
        }
        RunContext::pushTopLevelVariables(m_parameters);
    }

    /** The engine goes on counting in the next run. */
    void getUniqueNamespaceValue(XalanDOMString& prefix) const override {
        prefix = toEngineText("ns" + std::to_string(m_madeUpPrefixes++), m_machine.m_memory);
    }

    const XObjectPtr getVariable(const xalanc::XalanQName& name,
                                 const xalanc::Locator* locator) override {
        // The engine goes on with a warning.
        m_machine.m_problems->setMuted(true);
        const XObjectPtr value = RunContext::getVariable(name, locator);
        m_machine.m_problems->setMuted(false);
        if (value->getType() == xalanc::XObject::eTypeUnknown) {
            operation().fail(ErrorKind::Transform,
                             "the variable '" + toUtf8(name.getLocalPart()) + "' is not declared",
                             locator ? toLocation(locator) : instruction());
        }
        return value;
    }

    /** Where the instruction stands whose expression is evaluated. */
    vexa::Location instruction() const {
        const auto* const element =
            m_invoker ? m_invoker
                      : dynamic_cast<const xalanc::ElemTemplateElement*>(getPrefixResolver());
        return toLocation(element ? element->getLocator() : nullptr);
    }

protected:
    Machine& m_machine;

private:
    using Construction = xalanc::StylesheetConstructionContext;

    static constexpr XMLSize_t MANY_ATTRIBUTES = 1000;

    Operation& operation() const { return m_machine.m_environment.operation(); }

    void declare(const std::u16string& prefix, const XalanDOMString& uri) {
        RunContext::addResultAttribute(
            XalanDOMString((u"xmlns:" + prefix).c_str(), getMemoryManager()), uri);
    }

    /**
     * Declares the prefix of an attribute that is copied: the engine does not. If it stands for
     * another namespace there, adds the attribute with one that does not.
     *
     * @return whether the attribute is added
     */
    bool addWithOtherPrefix(const xalanc::XalanNode& attribute) {
        const XalanDOMString& uri = attribute.getNamespaceURI();
        const XalanDOMString& prefix = attribute.getPrefix();
        if (prefix.empty() || prefix == u"xml" || prefix == u"xmlns") {
            return false;
        }
        const XalanDOMString* const declared = getResultNamespaceForPrefix(prefix);
        if (!declared) {
            declare(prefix.c_str(), uri);
        }
        if (!declared || *declared == uri) {
            return false;
        }
        const XalanDOMString* const known = getResultPrefixForNamespace(uri);
        XalanDOMString other(getMemoryManager());
        if (known && !known->empty()) {
            other = *known;
        } else {
            getUniqueNamespaceValue(other);
            declare(other.c_str(), uri);
        }
        other.append(u":");
        other.append(attribute.getLocalName());
        addResultAttribute(other, attribute.getNodeValue());
        return true;
    }

    /** Executes a function of the stylesheet. */
    XObjectPtr call(const xalanc::ElemTemplateElement& function, const std::string& name,
                    xalanc::XalanNode* node, const XObjectArgVectorType& arguments,
                    const xalanc::Locator* locator) {
        constexpr std::size_t STACK_OF_CALL = std::size_t{64} * 1024;
        if (!hasStackFor(STACK_OF_CALL)) {
            operation().fail(ErrorKind::Transform, "'" + name + "' is called too deeply",
                             toLocation(locator));
        }
        operation().checkDepth(++m_depth);
        pushContextMarker();
        beginParams();
        std::size_t passed = 0;
        for (const auto* child = function.getFirstChildElem();
             child && child->getXSLToken() == Construction::ELEMNAME_PARAM &&
             passed < arguments.size();
             child = child->getNextSiblingElem()) {
            pushParam(child->getNameAttribute(), arguments[passed++]);
        }
        endParams();
        if (passed < arguments.size()) {
            operation().fail(ErrorKind::Transform,
                             "'" + name + "' takes " + std::to_string(passed) + " arguments",
                             toLocation(locator));
        }
        m_functionResults.emplace_back();
        // What it writes is lost.
        beginCreateXResultTreeFrag(node);
        function.execute(*this);
        endCreateXResultTreeFrag();
        popContextMarker();
        --m_depth;
        const XObjectPtr result = m_functionResults.back();
        m_functionResults.pop_back();
        return result.null() ? getXObjectFactory().createString(XalanDOMString(getMemoryManager()))
                             : result;
    }

    /** A long sort is nothing but comparisons. */
    class Collation : public IcuCollation {
    public:
        explicit Collation(const Context& context) : m_context(context) {}

        int operator()(const char16_t* left, const char16_t* right,
                       CaseOrder caseOrder) const override {
            m_context.operation().poll();
            return IcuCollation::operator()(left, right, caseOrder);
        }
        int operator()(const char16_t* left, const char16_t* right, const char16_t* locale,
                       CaseOrder caseOrder) const override {
            m_context.operation().poll();
            return IcuCollation::operator()(left, right, locale, caseOrder);
        }

    private:
        const Context& m_context;
    };

    Collation m_collation{*this};
    /** Of the functions that call one another; null until there is one. */
    std::vector<XObjectPtr> m_functionResults;
    /** Outlives the parameters, which return lists. */
    BorrowedLists m_lists;
    ParamVectorType m_parameters;
    StripAnswers m_stripAnswers;
    std::vector<bool> m_framesOfItsOwn;
    /** Of templates that invoke one another. */
    std::size_t m_depth = 0;
    /** The instruction that is about to invoke a template. */
    const xalanc::ElemTemplateElement* m_invoker = nullptr;
    mutable unsigned m_madeUpPrefixes = 0;
};

/** Executes with a tracer. */
class Machine::TracedContext : public Context {
public:
    using Context::Context;

    void reset() override {
        m_variables.clear();
        Context::reset();
    }

    Trace* trace() const override { return &*m_machine.m_trace; }

    using Context::pushVariable;
    void pushVariable(const xalanc::XalanQName& name, const xalanc::ElemVariable* variable,
                      const xalanc::ElemTemplateElement* element) override {
        m_variables.push_back(variable);
        Context::pushVariable(name, variable, element);
    }

    /**
     * A global variable gets its value when it is first used: the engine pushes a context marker
     * then, and none for a variable that has one.
     */
    const XObjectPtr getVariable(const xalanc::XalanQName& name,
                                 const xalanc::Locator* locator) override {
        const std::size_t before = trace()->steps();
        m_wanted = &name;
        try {
            XObjectPtr value = Context::getVariable(name, locator);
            m_wanted = nullptr;
            trace()->leaveTo(before);
            return value;
        } catch (...) {
            m_wanted = nullptr;
            trace()->leaveTo(before);
            throw;
        }
    }
    void pushContextMarker() override {
        if (m_wanted) {
            enterVariable(*std::exchange(m_wanted, nullptr));
        }
        Context::pushContextMarker();
    }

private:
    void enterVariable(const xalanc::XalanQName& name) {
        const auto found =
            std::find_if(m_variables.rbegin(), m_variables.rend(), [&](const auto* variable) {
                return variable->getNameAttribute().equals(name);
            });
        if (found != m_variables.rend()) {
            trace()->enter(**found, getRootDocument());
        }
    }

    /** The global ones that the host has given no value. */
    std::vector<const xalanc::ElemVariable*> m_variables;
    /** What is looked for, until it is known that it has its value. */
    const xalanc::XalanQName* m_wanted = nullptr;
};

/** Calls a function of the host. The engine keeps a copy of it. */
class Machine::HostFunction : public xalanc::Function {
public:
    HostFunction(Machine& machine, const vexa::Function& function)
        : m_machine(machine), m_function(function) {}

    using Function::execute;
    XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode* node,
                       const XObjectArgVectorType& arguments,
                       const xalanc::Locator* /*locator*/) const override {
        vexa::CallData data;
        data.arguments.reserve(arguments.size());
        for (const XObjectPtr& argument : arguments) {
            data.arguments.push_back(m_machine.m_values.toHost(*argument, context));
        }
        data.context = [&] { return node ? m_machine.m_values.toHost(*node) : vexa::Node(); };
        return m_machine.m_environment.operation().keepingException([&] {
            return m_machine.m_values.toEngine(m_function(vexa::CallAccess::make(data)), context);
        });
    }

    Function* clone(xercesc::MemoryManager& memory) const override {
        return xalanc::XalanCopyConstruct(memory, *this);
    }

protected:
    const XalanDOMString& getError(XalanDOMString& text) const override {
        text.clear();
        return text;
    }

private:
    Machine& m_machine;
    const vexa::Function& m_function;
};

Machine::Machine(const vexa::StylesheetAccess::Data& stylesheet, const RunSettings& settings,
                 DocumentParser& parser)
    : m_settings(settings), m_stylesheet(stylesheet), m_liaison(m_trees, m_memory),
      m_environment(m_memory, parser), m_values(m_environment), m_fragments(m_memory, m_values),
      m_objects(m_memory), m_construction(m_memory), m_xpaths(m_memory),
      m_processor(m_memory, m_liaison, m_environment, m_trees, m_objects, m_xpaths) {
    m_environment.setProcessor(&m_processor);
    m_context =
        settings.tracer ? std::make_unique<TracedContext>(*this) : std::make_unique<Context>(*this);
    installFunctions(settings);
}

Machine::~Machine() = default;

void Machine::installFunctions(const RunSettings& settings) {
    const XalanDOMString extensionNamespace(u"" VEXA_XSL_EXTENSION_NAMESPACE, m_memory);
    m_environment.installExternalFunctionLocal(xalanc::XSLTEngineImpl::getXalanXSLNameSpaceURL(),
                                               XalanDOMString(u"nodeset", m_memory),
                                               xalanc::FunctionNodeSet(true));
    installBuiltInFunctions([&](const I18NString& name, const TqXsltFunction& function) {
        m_environment.installExternalFunctionLocal(
            extensionNamespace,
            XalanDOMString(static_cast<const char16_t*>(name.getExternalBuffer()), m_memory),
            function);
    });
    for (const auto& [name, function] : settings.functions) {
        if (name.second == "evaluate") {
            m_environment.leaveEvaluateToHost();
        }
        m_environment.installExternalFunctionLocal(toEngineText(name.first, m_memory),
                                                   toEngineText(name.second, m_memory),
                                                   HostFunction(*this, function));
    }
}

void Machine::run(const vexa::DocumentAccess::Ptr& source, xalanc::XSLTResultTarget& target,
                  FurtherResults& furtherResults, Operation& operation, Sources& sources) {
    OperationProblems problems(operation, [this](const xercesc::Locator* locator) {
        return m_stylesheet.endsTransform(locator);
    });
    operation.setPlace([this] { return m_context->instruction(); });
    m_memory.setOperation(&operation);
    m_problems = &problems;
    m_furtherResults = &furtherResults;
    if (m_settings.tracer) {
        m_trace.emplace(*m_settings.tracer, m_stylesheet.instructions(), m_values, operation);
    }
    m_processor.setProblemListener(&problems);
    m_environment.begin(operation, sources);
    m_environment.add(source);
    m_processor.setStylesheetRoot(&m_stylesheet.root());
    xalanc::XSLTInputSource input;
    input.setNode(source->tree());
    m_processor.process(input, target, *m_context);
    m_memory.setCleaningUp(true);
    m_context->reset(); // and the processor and the factories with it
    m_values.reset();
    m_environment.finish();
    m_memory.setCleaningUp(false);
    m_memory.setOperation(nullptr);
    m_processor.setProblemListener(nullptr);
    m_problems = nullptr;
    m_trace.reset();
}
