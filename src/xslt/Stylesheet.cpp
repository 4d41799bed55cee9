#include "xslt/CallTemplateElement.h"
#include "xslt/DocumentElement.h"
#include "xslt/DocumentParser.h"
#include "xslt/FunctionResultElement.h"
#include "xslt/InvalidExpression.h"
#include "xslt/LiteralElement.h"
#include "xslt/ModuleParser.h"
#include "xslt/NumberElement.h"
#include "xslt/OperationProblems.h"
#include "xslt/StylesheetData.h"
#include "xslt/StylesheetFilter.h"
#include "xslt/Text.h"
#include "xslt/TracedElement.h"
#include "xslt/Uri.h"

#include "engine/EngineMemory.h"
#include "engine/ExpressionGuard.h"

#include <vexa/VEXAConfig.h>
#include <vexa/xslt/Error.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <xalanc/PlatformSupport/XSLException.hpp>
#include <xalanc/PlatformSupport/XalanLocator.hpp>
#include <xalanc/XPath/XObjectFactoryDefault.hpp>
#include <xalanc/XPath/XalanQNameByReference.hpp>
#include <xalanc/XSLT/ElemParam.hpp>
#include <xalanc/XSLT/ElemTemplate.hpp>
#include <xalanc/XSLT/ElemVariable.hpp>
#include <xalanc/XSLT/ProblemListener.hpp>
#include <xalanc/XSLT/StylesheetHandler.hpp>
#include <xalanc/XSLT/XSLTEngineImpl.hpp>
#include <xalanc/XSLT/XSLTProcessorEnvSupportDefault.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDOMSupport.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeParserLiaison.hpp>
#include <xercesc/util/XMLChar.hpp>

using xalanc::XalanDOMString;

namespace {

constexpr const XMLCh* EXSLT_FUNCTIONS = u"http://exslt.org/functions";

/** The engine as far as compiling needs it. */
struct Compiler {
    explicit Compiler(MemoryPool& memory)
        : liaison(domSupport, memory), environment(memory, nullptr), objects(memory),
          xpaths(memory), processor(memory, liaison, environment, domSupport, objects, xpaths),
          cleanUp(memory) {
        environment.setProcessor(&processor);
    }

    xalanc::XalanSourceTreeDOMSupport domSupport;
    xalanc::XalanSourceTreeParserLiaison liaison;
    xalanc::XSLTProcessorEnvSupportDefault environment;
    xalanc::XObjectFactoryDefault objects;
    xalanc::XPathFactoryDefault xpaths;
    xalanc::XSLTEngineImpl processor;
    MemoryPool::CleanUp cleanUp;
};

bool hasValue(const xalanc::AttributeListType& attributes, const char16_t* name,
              std::u16string_view value) {
    const XMLCh* const found = attributes.getValue(name);
    return found && value == found;
}

/** What a pattern has between its operators |, without white space around it. */
std::vector<std::u16string_view> alternativesOf(std::u16string_view pattern) {
    std::vector<std::u16string_view> alternatives;
    std::size_t depth = 0;
    std::size_t begin = 0;
    const auto add = [&](std::size_t end) {
        constexpr std::u16string_view SPACE = u" \t\r\n";
        std::u16string_view alternative = pattern.substr(begin, end - begin);
        alternative.remove_prefix(
            std::min(alternative.find_first_not_of(SPACE), alternative.size()));
        alternatives.push_back(alternative.substr(0, alternative.find_last_not_of(SPACE) + 1));
        begin = end + 1;
    };
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char16_t c = pattern[i];
        if (c == u'"' || c == u'\'') {
            i = std::min(pattern.find(c, i + 1), pattern.size());
        } else if (c == u'|' && depth == 0) {
            add(i);
        }
        depth += c == u'[' || c == u'(';
        depth -= depth > 0 && (c == u']' || c == u')');
    }
    add(pattern.size());
    return alternatives;
}

/** Whether an alternative of a pattern is empty, or has a slash at its end that needs a step. */
bool isIncompletePattern(std::u16string_view pattern) {
    const auto alternatives = alternativesOf(pattern);
    return std::any_of(
        alternatives.begin(), alternatives.end(), [](std::u16string_view alternative) {
            return alternative.empty() || (alternative.size() > 1 && alternative.back() == u'/');
        });
}

/** Removes a piece from the beginning, and white space before it. @return whether it was there */
bool skip(std::u16string_view& text, std::u16string_view piece) {
    const auto begin = std::min(text.find_first_not_of(u" \t\r\n"), text.size());
    if (text.substr(begin, piece.size()) != piece) {
        return false;
    }
    text.remove_prefix(begin + piece.size());
    return true;
}

/**
 * If a call of system-property() for the vendor, or its URL, is at the beginning: removes it.
 * @return the answer; null if there is none
 */
const char16_t* skipCallForVendor(std::u16string_view& text,
                                  const xalanc::PrefixResolver& resolver) {
    std::u16string_view rest = text;
    if (!skip(rest, u"system-property") || !skip(rest, u"(")) {
        return nullptr;
    }
    const bool isApostrophe = skip(rest, u"'");
    if (!isApostrophe && !skip(rest, u"\"")) {
        return nullptr;
    }
    const auto end = std::min(rest.find(isApostrophe ? u'\'' : u'"'), rest.size() - 1);
    const std::u16string_view name = rest.substr(0, end);
    rest.remove_prefix(end + 1);
    const std::u16string prefix(prefixOf(name));
    const XalanDOMString* const uri =
        resolver.getNamespaceForPrefix(XalanDOMString(prefix.c_str(), engineMemory()));
    const bool isUrl = localPart(name) == u"vendor-url";
    if (!uri || *uri != XSLT_NAMESPACE.data() || !(isUrl || localPart(name) == u"vendor") ||
        !skip(rest, u")")) {
        return nullptr;
    }
    text = rest;
    return isUrl ? u"'" VEXA_XSL_EXTENSION_NAMESPACE u"'" : u"'VEXA'";
}

/**
 * An expression in which this library answers for the vendor. The engine names its own, and
 * stylesheets then count on the extensions of another engine that it makes.
 */
std::u16string withOwnVendor(std::u16string_view text, const xalanc::PrefixResolver& resolver) {
    std::u16string result;
    while (!text.empty()) {
        const bool isInName = !result.empty() && xercesc::XMLChar1_0::isNameChar(result.back());
        if (const char16_t* const answer = isInName ? nullptr : skipCallForVendor(text, resolver)) {
            result += answer;
            continue;
        }
        const char16_t c = text.front();
        const auto end = c == u'"' || c == u'\'' ? text.find(c, 1) : 0;
        const auto length = std::min(end, text.size() - 1) + 1;
        result += text.substr(0, length);
        text.remove_prefix(length);
    }
    return result;
}

} // namespace

namespace vexa {

/** Compiles, and reads the modules through the sources of the operation. */
class Stylesheet::Data::Construction : public xalanc::StylesheetConstructionContextDefault {
public:
    Construction(Data& data, Compiler& compiler, xalanc::XPathFactory& xpaths, Operation& operation,
                 Sources& sources)
        : StylesheetConstructionContextDefault(data.m_memory, compiler.processor, xpaths),
          m_data(data), m_operation(&operation), m_sources(&sources) {}

    const xalanc::StylesheetRoot& compile(const Input& input) {
        const Sources::Opened opened = m_sources->open(input);
        addModule(opened.uri);
        xalanc::StylesheetRoot* const root = create(toEngineText(opened.uri, engineMemory()));
        xalanc::StylesheetHandler handler(*root, *this);
        const MemoryPool::CleanUp cleanUp(m_data.m_memory);
        parse(opened, handler, false);
        root->postConstruction(*this);
        return *root;
    }

    using StylesheetConstructionContextDefault::getURLStringFromString;
    XalanDOMString& getURLStringFromString(const XalanDOMString& url, const XalanDOMString& base,
                                           XalanDOMString& result) override {
        const std::string asked = toUtf8(base);
        const auto known = m_data.m_realUris.find(asked);
        const std::string& real = known == m_data.m_realUris.end() ? asked : known->second;
        result = toEngineText(resolveUri(toUtf8(url), real), getMemoryManager());
        return result;
    }

    xalanc::XalanDocument* parseXML(const XalanDOMString& url, xercesc::DocumentHandler* handler,
                                    xalanc::XalanDocument* /*document*/,
                                    xalanc::ErrorHandler* /*errors*/) override {
        const std::string uri = toUtf8(url);
        const Location place = toLocation(getLocatorFromStack());
        const Sources::Opened opened = m_sources->open(uri, place.uri, Reference::Module, place);
        m_data.m_realUris.emplace(uri, opened.uri);
        addModule(opened.uri);
        parse(opened, *handler, true);
        return nullptr;
    }

    using StylesheetConstructionContextDefault::createXPath;
    xalanc::XPath* createXPath(const xercesc::Locator* locator, const XalanDOMString& text,
                               const xalanc::PrefixResolver& resolver, bool allowVariables,
                               bool allowKey) override {
        m_operation->poll();
        rejectTooDeepExpression({text.c_str(), text.length()});
        const std::u16string_view view(text.c_str(), text.length());
        if (view.find(u"system-property") != std::u16string_view::npos) {
            const std::u16string changed = withOwnVendor(view, resolver);
            if (changed != view) {
                return createXPath(locator, XalanDOMString(changed.c_str(), getMemoryManager()),
                                   resolver, allowVariables, allowKey);
            }
        }
        if (!m_filter || !m_filter->isForwardsCompatible()) {
            return StylesheetConstructionContextDefault::createXPath(locator, text, resolver,
                                                                     allowVariables, allowKey);
        }
        try {
            return StylesheetConstructionContextDefault::createXPath(locator, text, resolver,
                                                                     allowVariables, allowKey);
        } catch (const xalanc::XSLException& exception) {
            const std::string cause = cleanText(toUtf8(exception.getMessage()));
            return StylesheetConstructionContextDefault::createXPath(
                locator, toEngineText(InvalidExpression::callFor(cause), getMemoryManager()),
                m_invalidExpression, allowVariables, allowKey);
        }
    }

    using StylesheetConstructionContextDefault::createMatchPattern;
    xalanc::XPath* createMatchPattern(const xercesc::Locator* locator, const XalanDOMString& text,
                                      const xalanc::PrefixResolver& resolver, bool allowVariables,
                                      bool allowKey) override {
        m_operation->poll();
        rejectTooDeepExpression({text.c_str(), text.length()});
        // The engine crashes at it.
        if (isIncompletePattern({text.c_str(), text.length()})) {
            m_operation->fail(ErrorKind::Compile, "incomplete pattern '" + toUtf8(text) + "'",
                              toLocation(locator));
        }
        return StylesheetConstructionContextDefault::createMatchPattern(locator, text, resolver,
                                                                        allowVariables, allowKey);
    }

    /**
     * Called for each alternative of a rule's pattern. Each one is a rule of its own, with its own
     * priority; the engine gives that to a node which any of them matches.
     */
    const xalanc::XalanMatchPatternData*
    createXalanMatchPatternData(const xalanc::ElemTemplate& rule,
                                XalanDOMString::size_type position, const XalanDOMString& target,
                                const xalanc::XPath& pattern, const XalanDOMString& text,
                                xalanc::XPath::eMatchScore priority) override {
        m_alternative = &rule == m_rule ? m_alternative + 1 : 0;
        m_rule = &rule;
        const auto alternatives = alternativesOf({text.c_str(), text.length()});
        const xalanc::XPath* own = &pattern;
        if (alternatives.size() > 1 && m_alternative < alternatives.size()) {
            const std::u16string alternative(alternatives[m_alternative]);
            own = createMatchPattern(rule.getLocator(),
                                     XalanDOMString(alternative.c_str(), getMemoryManager()), rule,
                                     false, true);
        }
        return StylesheetConstructionContextDefault::createXalanMatchPatternData(
            rule, position, target, *own, text, priority);
    }

    using StylesheetConstructionContextDefault::createElement;
    xalanc::ElemTemplateElement* createElement(int token, xalanc::Stylesheet& stylesheet,
                                               const xalanc::AttributeListType& attributes,
                                               const xercesc::Locator* locator) override {
        m_module = &stylesheet;
        return listed(makeXsltElement(token, stylesheet, attributes, locator));
    }

    xalanc::ElemTemplateElement* createElement(int token, xalanc::Stylesheet& stylesheet,
                                               const XMLCh* name,
                                               const xalanc::AttributeListType& attributes,
                                               const xercesc::Locator* locator) override {
        if (token == ELEMNAME_LITERAL_RESULT) {
            return listed(new (m_data.m_memory.allocate(sizeof(LiteralElement))) LiteralElement(
                *this, stylesheet, name, attributes, locator, m_data.m_names.aliases));
        }
        return listed(StylesheetConstructionContextDefault::createElement(token, stylesheet, name,
                                                                          attributes, locator));
    }

    xalanc::ElemTemplateElement* createElement(xalanc::Stylesheet& stylesheet, const XMLCh* name,
                                               const xalanc::AttributeListType& attributes,
                                               xalanc::ExtensionNSHandler& handler,
                                               const xercesc::Locator* locator) override {
        const StylesheetFilter::ExpandedName expanded = m_filter->elementName();
        if (DocumentElement::isNamed(expanded.first, expanded.second)) {
            return listed(makeElement<DocumentElement>(stylesheet, attributes, locator));
        }
        if (expanded == StylesheetFilter::ExpandedName(EXSLT_FUNCTIONS, u"result")) {
            return listed(makeElement<FunctionResultElement>(stylesheet, attributes, locator));
        }
        return listed(StylesheetConstructionContextDefault::createElement(
            stylesheet, name, attributes, handler, locator));
    }

private:
    xalanc::ElemTemplateElement* listed(xalanc::ElemTemplateElement* element) {
        m_data.m_elements.push_back(element);
        return element;
    }

    xalanc::ElemTemplateElement* makeXsltElement(int token, xalanc::Stylesheet& stylesheet,
                                                 const xalanc::AttributeListType& attributes,
                                                 const xercesc::Locator* locator) {
        const auto hidden = m_filter ? m_filter->hidden() : StylesheetFilter::Hidden::None;
        if (hidden == StylesheetFilter::Hidden::Document) {
            return makeElement<DocumentElement>(stylesheet, attributes, locator);
        }
        const auto line = xalanc::XalanLocator::getLineNumber(locator);
        const auto column = xalanc::XalanLocator::getColumnNumber(locator);
        const int realToken =
            hidden == StylesheetFilter::Hidden::Variable ? ELEMNAME_VARIABLE : token;
        switch (realToken) {
        case ELEMNAME_NUMBER:
            if (!attributes.getValue(u"count") && !attributes.getValue(u"value")) {
                return new (m_data.m_memory.allocate(sizeof(NumberElement)))
                    NumberElement(*this, stylesheet, attributes, line, column,
                                  stylesheet.getStylesheetRoot().getNextElemNumberID());
            }
            break;
        case ELEMNAME_CALL_TEMPLATE:
            if (attributes.getValue(u"name")) {
                return makeElement<CallTemplateElement>(stylesheet, attributes, locator);
            }
            break;
        case ELEMNAME_TEMPLATE:
            return makeElement<TracedElement<xalanc::ElemTemplate>>(stylesheet, attributes, line,
                                                                    column);
        case ELEMNAME_VARIABLE:
            return makeElement<TracedElement<xalanc::ElemVariable>>(stylesheet, attributes, line,
                                                                    column);
        case ELEMNAME_PARAM:
            return makeElement<TracedElement<xalanc::ElemParam>>(stylesheet, attributes, line,
                                                                 column);
        default:
            break;
        }
        xalanc::ElemTemplateElement* const element =
            StylesheetConstructionContextDefault::createElement(realToken, stylesheet, attributes,
                                                                locator);
        if (token == ELEMNAME_MESSAGE && hasValue(attributes, u"terminate", u"yes")) {
            m_data.m_endingMessages.insert(element->getLocator());
        }
        return element;
    }

    /** It lives as long as the memory of the stylesheet. */
    template <typename Element, typename... Place>
    Element* makeElement(xalanc::Stylesheet& stylesheet,
                         const xalanc::AttributeListType& attributes, Place... place) {
        return new (m_data.m_memory.allocate(sizeof(Element)))
            Element(*this, stylesheet, attributes, place...);
    }

    void parse(const Sources::Opened& opened, xercesc::DocumentHandler& handler, bool isIncluded) {
        const auto declareExtensions = [this](const std::u16string& uri) {
            const XalanDOMString name(uri.c_str(), getMemoryManager());
            if (m_module && !m_module->lookupExtensionNSHandler(name)) {
                m_module->processExtensionNamespace(*this, name);
            }
        };
        StylesheetFilter filter(handler, *m_operation, isIncluded, m_data.m_names,
                                declareExtensions);
        StylesheetFilter* const outer = std::exchange(m_filter, &filter);
        parseModule(*opened.source, filter, *m_operation, *m_sources,
                    [this](const std::string& uri) { addModule(uri); });
        m_filter = outer;
    }

    void addModule(const std::string& uri) {
        auto& modules = m_data.m_modules;
        if (std::find(modules.begin(), modules.end(), uri) == modules.end()) {
            modules.push_back(uri);
        }
    }

    Data& m_data;
    Operation* m_operation;
    Sources* m_sources;
    /** Of the module that is read; after a failure nobody asks for it. */
    StylesheetFilter* m_filter = nullptr;
    /** That of the instruction that was read last. */
    xalanc::Stylesheet* m_module = nullptr;
    /** The rule whose alternatives are added, and the number of the last one. */
    const xalanc::ElemTemplate* m_rule = nullptr;
    std::size_t m_alternative = 0;
    const InvalidExpression m_invalidExpression{getMemoryManager()};
};

Stylesheet::Data::Data() = default;

void Stylesheet::Data::compile(const Input& input, Operation& operation) {
    Sources sources(operation);
    Compiler compiler(m_memory);
    OperationProblems problems(operation);
    compiler.processor.setProblemListener(&problems);
    m_memory.setOperation(&operation);
    auto* const xpaths = new (m_memory.allocate(sizeof(xalanc::XPathFactoryDefault)))
        xalanc::XPathFactoryDefault(m_memory);
    auto* const construction = new (m_memory.allocate(sizeof(Construction)))
        Construction(*this, compiler, *xpaths, operation, sources);
    m_root = &construction->compile(input);
}

Stylesheet::Data::~Data() = default;

const xalanc::ElemTemplateElement*
Stylesheet::Data::findFunction(const XalanDOMString& uri, const XalanDOMString& name) const {
    if (m_names.functions.empty()) {
        return nullptr;
    }
    const StylesheetFilter::ExpandedName function(uri.c_str(), name.c_str());
    if (m_names.functions.count(function) == 0) {
        return nullptr;
    }
    XalanDOMString templateName(name, engineMemory());
    templateName.append(StylesheetFilter::SUFFIX_OF_FUNCTIONS);
    return m_root->findNamedTemplate(xalanc::XalanQNameByReference(uri, templateName));
}

const InstructionList& Stylesheet::Data::instructions() const {
    const std::lock_guard lock(m_listing);
    if (!m_instructions) {
        m_instructions = std::make_unique<InstructionList>(m_elements);
    }
    return *m_instructions;
}

const Stylesheet::Data& StylesheetAccess::data(const Stylesheet& stylesheet) {
    if (!stylesheet.m_data) {
        throw Error(ErrorKind::Usage, "the stylesheet is empty");
    }
    return *stylesheet.m_data;
}

Stylesheet::Stylesheet() noexcept = default;

Stylesheet::Stylesheet(std::shared_ptr<const Data> data) noexcept : m_data(std::move(data)) {}

Stylesheet Stylesheet::compile(const Input& input, const Options& options) {
    Operation operation(options);
    const auto data = std::make_shared<Data>();
    operation.run(ErrorKind::Compile, [&] { data->compile(input, operation); });
    data->seal();
    return Stylesheet(data);
}

const std::string& Stylesheet::uri() const {
    return StylesheetAccess::data(*this).uri();
}

std::vector<std::string> Stylesheet::modules() const {
    return StylesheetAccess::data(*this).modules();
}

const std::vector<Instruction>& Stylesheet::instructions() const& {
    return StylesheetAccess::data(*this).instructions().all();
}

std::vector<Instruction> Stylesheet::instructions() && {
    return StylesheetAccess::data(*this).instructions().all();
}

std::string Stylesheet::method() const {
    switch (StylesheetAccess::data(*this).root().getOutputMethod()) {
    case xalanc::FormatterListener::OUTPUT_METHOD_XML:
        return "xml";
    case xalanc::FormatterListener::OUTPUT_METHOD_HTML:
        return "html";
    case xalanc::FormatterListener::OUTPUT_METHOD_TEXT:
        return "text";
    default:
        return "";
    }
}

std::string Stylesheet::encoding() const {
    MemoryPool memory;
    XalanDOMString encoding(memory);
    return toUtf8(StylesheetAccess::data(*this).root().getOutputEncoding(encoding));
}

std::string Stylesheet::mediaType() const {
    MemoryPool memory;
    XalanDOMString mediaType(memory);
    return toUtf8(StylesheetAccess::data(*this).root().getOutputMediaType(mediaType));
}

} // namespace vexa
