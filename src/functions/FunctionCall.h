/**
 * @file
 * What every extension function of the library does around its worker: checks its arguments, reads
 * them as texts, and turns a text into its result.
 */
#pragma once

#include <nrb/I18NString.h>
#include <vexa/TqXsltFunction.h>

#include <cstddef>

/**
 * Where a function asserts that its first argument is there. The lines are part of the texts that
 * hosts compare, and so do not follow the files.
 */
struct AssertionPlace {
    const char* sourceUnit;
    int line;
};

/** One call of an extension function, as the engine makes it. */
class FunctionCall {
public:
    FunctionCall(xalanc::XPathExecutionContext& executionContext, xalanc::XalanNode* contextNode,
                 const xalanc::Function::XObjectArgVectorType& args)
        : m_executionContext(executionContext), m_pContextNode(contextNode), m_args(args) {}

    /**
     * Reports a wrong number of arguments through the execution context, which normally ends the
     * evaluation by throwing. Should it return, the call goes on with what it was given.
     */
    void expectArguments(std::size_t count, const char* arityMessage) const;

    /** @throws NRBAssertError if there is no first argument object */
    void assertFirstArgument(const AssertionPlace& place) const;

    /** The string value of an argument; empty for one that is not there. */
    I18NString argument(std::size_t index) const;

    /** A string object of the engine that holds a copy of the text. */
    xalanc::XObjectPtr result(const I18NString& text) const;

private:
    xalanc::XPathExecutionContext& m_executionContext;
    xalanc::XalanNode* m_pContextNode;
    const xalanc::Function::XObjectArgVectorType& m_args;
};
