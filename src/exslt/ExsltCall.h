/**
 * @file
 * One call of an EXSLT function.
 */
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include <xalanc/XPath/NodeRefListBase.hpp>
#include <xalanc/XPath/XObject.hpp>
#include <xalanc/XPath/XPathExecutionContext.hpp>
#include <xercesc/sax/Locator.hpp>

/** What a function needs that is not the engine's. */
class ExsltHost {
public:
    using Visit = std::function<void(const xalanc::XObject&)>;

    ExsltHost() = default;
    ExsltHost(const ExsltHost&) = delete;
    ExsltHost& operator=(const ExsltHost&) = delete;
    virtual ~ExsltHost() = default;

    /** Is called often in long loops, and throws where the operation must end. */
    virtual void poll() const = 0;
    /**
     * Evaluates an expression for each node of a list, which is the context.
     *
     * @return whether the expression is right: if not, a message has been reported
     */
    virtual bool evaluate(std::u16string_view expression, const xalanc::NodeRefListBase& nodes,
                          const Visit& visit) const = 0;
};

/** What a function needs of the evaluation, and short ways to its arguments and its result. */
class ExsltCall {
public:
    using Arguments = xalanc::XPathExecutionContext::XObjectArgVectorType;
    using Result = xalanc::XObjectPtr;

    /** All must outlive this object. */
    ExsltCall(xalanc::XPathExecutionContext& context, xalanc::XalanNode* node,
              const Arguments& arguments, const xercesc::Locator* locator, const ExsltHost& host)
        : m_context(context), m_node(node), m_arguments(arguments), m_locator(locator),
          m_host(host) {}

    xalanc::XPathExecutionContext& context() const { return m_context; }
    xalanc::XalanNode* node() const { return m_node; }
    const Arguments& arguments() const { return m_arguments; }
    const xercesc::Locator* locator() const { return m_locator; }

    std::size_t size() const { return m_arguments.size(); }
    /** The text is valid as long as the call. */
    std::u16string_view text(std::size_t index) const;
    double number(std::size_t index) const { return m_arguments[index]->num(m_context); }
    bool boolean(std::size_t index) const { return m_arguments[index]->boolean(m_context); }
    bool isNodeSet(std::size_t index) const {
        return m_arguments[index]->getType() == xalanc::XObject::eTypeNodeSet;
    }
    /** @throws the engine's exceptions for an argument of another type */
    const xalanc::NodeRefListBase& nodes(std::size_t index) const {
        return m_arguments[index]->nodeset();
    }

    const ExsltHost& host() const { return m_host; }
    void poll() const { m_host.poll(); }

    Result result(std::u16string_view text) const;
    Result result(double number) const;
    Result result(bool boolean) const;

    /** @throws xalanc::XSLException that ends the transform */
    [[noreturn]] void fail(const std::string& text) const;

private:
    xalanc::XPathExecutionContext& m_context;
    xalanc::XalanNode* m_node;
    const Arguments& m_arguments;
    const xercesc::Locator* m_locator;
    const ExsltHost& m_host;
};

/** More characters than anybody needs in one result, and little memory. */
constexpr std::size_t MOST_CHARACTERS = std::size_t{16} * 1024 * 1024;

/** @throws xalanc::XSLException if a text of some length becomes too long by `more` characters */
void checkLength(std::size_t length, std::size_t more, const ExsltCall& call);

/** The string-value of a node. */
std::u16string textOf(const xalanc::XalanNode& node, const ExsltCall& call);

/** A text under construction, of limited length: arguments may ask for any. */
class ExsltText {
public:
    explicit ExsltText(const ExsltCall& call) : m_call(call) {}

    /** @throws xalanc::XSLException if the text becomes too long */
    void append(std::u16string_view more);

    std::u16string_view text() const { return m_text; }

private:
    const ExsltCall& m_call;
    std::u16string m_text;
};

/** How many code units of UTF-16 the character has that begins at an index. */
std::size_t lengthOfCharacter(std::u16string_view text, std::size_t index);
