/**
 * @file
 * The base class of XPath extension functions.
 */
#pragma once

#include <nrb/I18NString.h>
#include <vexa/VEXAExport.h>

// What a function needs to read its arguments and to make its result.
#include <xalanc/XPath/Function.hpp>
#include <xalanc/XPath/XObject.hpp>
#include <xalanc/XPath/XObjectFactory.hpp>
#include <xalanc/XPath/XPathExecutionContext.hpp>

/**
 * An XPath function that stylesheets can call in the library's extension namespace
 * (VEXA_XSL_EXTENSION_NAMESPACE).
 *
 * A function of your own overrides three operations, and is handed to
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
 * Ownership: the transformer and the engine work on clones, several of each function. The caller's
 * own object may go as soon as it is installed.
 *
 * Threads: a clone is called on the thread that runs the transform. It must not call the
 * transformer that is running it.
 *
 * Exceptions: what `execute` throws ends the transform. The transforms of files and of streams
 * report an exception of the engines', and let any other pass to their caller. The in-memory
 * transform reports every one.
 */
class VEXA_EXPORT TqXsltFunction : public xalanc::Function {
public:
    /** For derived classes; the base has no state. */
    TqXsltFunction();
    /** For derived classes, whose `clone` may copy. */
    TqXsltFunction(const TqXsltFunction& other);
    ~TqXsltFunction() override;

    using Function::execute;

    /**
     * Evaluates a call of the function.
     *
     * @param executionContext the evaluation under way; its XObject factory makes the result, and
     *                         its `problem` operation reports a wrong call
     * @param context          the context node; may be null
     * @param args             the arguments, in order
     * @param locator          where the call stands; may be null
     * @return the result; never null, which the engine does not survive
     */
    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override = 0;

    /** Gives a copy of this function, made with plain `new`. It belongs to the caller. Never null.
     */
    virtual TqXsltFunction* clone() const = 0;

    /** The text that tells how the function is to be called. Needs a started library. */
    virtual xalanc::XalanDOMString getError() const = 0;

    /**
     * Gives the engine a copy of this function in the engine's own memory; functions leave it as it
     * is. It throws what clone() throws, and what the memory manager throws.
     *
     * @param memoryManager the engine's own
     * @return belongs to the engine, which gives its memory back to that manager
     */
    Function* clone(xercesc::MemoryManager& memoryManager) const override;

    /**
     * The text as an engine string. Needs a started library. It ends at the first NUL. Any number
     * of threads may convert at once, this way and back.
     *
     * @throws std::bad_alloc, or what the engine's memory manager throws
     */
    static xalanc::XalanDOMString I18NStringToXalanDOMString(const I18NString& text);

    /** An engine string as a text. It ends at the first NUL. @throws std::bad_alloc */
    static I18NString XalanDOMStringToI18NString(const xalanc::XalanDOMString& text);

protected:
    /** Tells the engine the text of getError(); functions leave it as it is. */
    const xalanc::XalanDOMString& getError(xalanc::XalanDOMString& buffer) const final;
};
