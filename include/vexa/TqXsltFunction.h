/**
 * @file
 * Base class of XPath extension functions.
 */
#pragma once

#include <nrb/I18NString.h>
#include <vexa/VEXAExport.h>

// These headers are needed to read the arguments of a function and to create its result.
#include <xalanc/XPath/Function.hpp>
#include <xalanc/XPath/XObject.hpp>
#include <xalanc/XPath/XObjectFactory.hpp>
#include <xalanc/XPath/XPathExecutionContext.hpp>

/**
 * An XPath function that stylesheets can call in the library's extension namespace
 * (VEXA_XSL_EXTENSION_NAMESPACE).
 *
 * To write an extension function, override three operations, and install the function with
 * VEXAXslTransformer::installExternalFunction():
 *
 *     class FunctionShout : public TqXsltFunction {
 *     public:
 *         xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context,
 *                                    xalanc::XalanNode* node, const XObjectArgVectorType& args,
 *                                    const xalanc::Locator* locator) const override {
 *             if (args.size() != 1) { // ends the evaluation
 *                 context.problem(context.eXPATH, context.eError, getError(), locator, node);
 *             }
 *             I18NString text = XalanDOMStringToI18NString(args[0]->str(context));
 *             text += "!";
 *             return context.getXObjectFactory().createString(I18NStringToXalanDOMString(text));
 *         }
 *         TqXsltFunction* clone() const override { return new FunctionShout(*this); }
 *         xalanc::XalanDOMString getError() const override {
 *             return xalanc::XalanDOMString("Shout() takes one argument");
 *         }
 *     };
 *
 * Ownership: the transformer and the engine use clones, several of each function. The caller may
 * destroy its own object after the installation.
 *
 * Threads: a clone is called on the thread that runs the transform. It must not call the
 * transformer that runs it.
 *
 * Exceptions: an exception of `execute` ends the transform. File and stream transforms report
 * exceptions of the engine, and let all others pass to the caller. The in-memory transform reports
 * every exception.
 */
class VEXA_EXPORT TqXsltFunction : public xalanc::Function {
public:
    /** For derived classes. The base class has no state. */
    TqXsltFunction();
    /** For the `clone` operations of derived classes. */
    TqXsltFunction(const TqXsltFunction& other);
    ~TqXsltFunction() override;

    using Function::execute;

    /**
     * Evaluates a call of the function.
     *
     * @param executionContext its XObject factory creates the result, and its `problem` operation
     *                         reports a wrong call
     * @param context          the context node; may be null
     * @param args             the arguments, in order
     * @param locator          the location of the call; may be null
     * @return the result; must not be null: the engine would crash
     */
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override = 0;

    /** Returns a copy of this function, created with `new`. The caller owns it. Never null. */
    virtual TqXsltFunction* clone() const = 0;

    /** Returns the message for a wrong call. The library must be initialized. */
    virtual xalanc::XalanDOMString getError() const = 0;

    /**
     * Creates a copy of this function in the engine's memory. Do not override it. It throws what
     * clone() throws, and what the memory manager throws.
     *
     * @param memoryManager the memory manager of the engine
     * @return a function that the engine owns and frees through `memoryManager`
     */
    Function* clone(xercesc::MemoryManager& memoryManager) const override;

    /**
     * Converts a string to an engine string, up to the first NUL. The library must be initialized.
     * Any number of threads may convert at the same time.
     *
     * @throws std::bad_alloc, or what the memory manager of the engine throws
     */
    static xalanc::XalanDOMString I18NStringToXalanDOMString(const I18NString& text);

    /**
     * Converts an engine string to a string, up to the first NUL. Any number of threads may convert
     * at the same time.
     *
     * @throws std::bad_alloc
     */
    static I18NString XalanDOMStringToI18NString(const xalanc::XalanDOMString& text);

protected:
    /** Passes the text of getError() to the engine. */
    const xalanc::XalanDOMString& getError(xalanc::XalanDOMString& buffer) const final;
};
