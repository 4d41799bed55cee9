/**
 * @file
 * The common part of all built-in functions: checks the arguments, reads them as texts, and creates
 * the result from a text.
 */
#pragma once

#include <nrb/I18NString.h>
#include <vexa/TqXsltFunction.h>

#include <cstddef>

/**
 * The location that a failed assertion reports. Hosts compare it: the line is a fixed number, and
 * not the line in our source file.
 */
struct AssertionLocation {
    const char* sourceUnit;
    int line;
};

/** One call of a built-in function. */
class FunctionCall {
public:
    FunctionCall(xalanc::XPathExecutionContext& executionContext, xalanc::XalanNode* contextNode,
                 const xalanc::Function::XObjectArgVectorType& args)
        : m_executionContext(executionContext), m_pContextNode(contextNode), m_args(args) {}

    /**
     * Reports a wrong number of arguments to the execution context, which normally throws. If it
     * returns, the call continues with the given arguments.
     */
    void expectArguments(std::size_t count, const char* arityMessage) const;

    /** @throws NRBAssertError if there is no first argument object */
    void assertFirstArgument(const AssertionLocation& location) const;

    /** Returns the string value of an argument; empty if the argument is missing. */
    I18NString argument(std::size_t index) const;

    /** Creates an XPath string with a copy of the text. */
    xalanc::XObjectPtr result(const I18NString& text) const;

private:
    xalanc::XPathExecutionContext& m_executionContext;
    xalanc::XalanNode* m_pContextNode;
    const xalanc::Function::XObjectArgVectorType& m_args;
};
