/**
 * @file
 * The transformer: XSLT 1.0 transforms and XPath queries.
 */
#pragma once

#include <nrb/I18NString.h>
#include <vexa/VEXAConfig.h>
#include <vexa/VEXAExport.h>

#include <iosfwd>
#include <map>
#include <memory>

class Dom2Dom;
class TqXsltFunction;

namespace VEXA_ENGINE_NAMESPACE {
class XalanParsedSource;
class XalanTransformer;
class XSLTResultTarget;
} // namespace VEXA_ENGINE_NAMESPACE

/**
 * Runs transforms and queries, with its own stylesheet parameters and extension functions.
 *
 *     VEXAXslTransformer transformer;
 *     transformer.setStylesheetParam("currency", "EUR");
 *     if (transformer.doTransform("orders.xml", "report.xsl", "report.html") != 0) {
 *         std::cerr << transformer.getLastError() << '\n';
 *     }
 *
 * Ownership: the transformer owns its engine. The engine keeps the source of every file and stream
 * transform until the transformer is destroyed: 6 to 12 times the size of the source, plus about
 * 130 KB for each transform. A long-running process should therefore recreate its transformer at
 * regular intervals. In-memory documents are freed when their Dom2Dom is destroyed. The clones made
 * by installExternalFunction() are never freed. Create a transformer after
 * TQXslTransformer_Initialize(), and destroy it before the matching TQXslTransformer_Terminate().
 *
 * Threads: one thread at a time uses a transformer and its in-memory documents. Transformers in
 * different threads are independent, unless their stylesheets use timers: all transformers share
 * the timers, without a lock.
 *
 * Failures: an operation reports a failure by a non-zero result. getLastError() then returns the
 * error message. The transformer stays usable.
 *
 * Exceptions: the in-memory transform and the query catch and report every exception; only out of
 * memory while the report is made passes to the caller. All other operations catch nothing:
 * exceptions of strings, of the memory allocation, of extension functions, and those that the
 * engine does not report itself, pass to the caller.
 *
 * In file and stream transforms the engine prints some diagnostics on std::cerr: texts of
 * xsl:message, warnings and parse errors. The in-memory transform prints nothing.
 */
class VEXA_EXPORT VEXAXslTransformer {
public:
    /**
     * Creates a transformer without parameters, with an empty error message, and with the built-in
     * functions: GetLocalizedString, GetDateTime, TimerCreate, TimerStart, TimerStop, TimerTotal,
     * TimerReset and TimerDestroy.
     */
    VEXAXslTransformer();
    VEXAXslTransformer(const VEXAXslTransformer&) = delete;
    VEXAXslTransformer& operator=(const VEXAXslTransformer&) = delete;
    /** Its in-memory documents must be destroyed before. The library must still be initialized. */
    ~VEXAXslTransformer();

    /**
     * Installs an extension function for all later transforms of this transformer, in the namespace
     * VEXA_XSL_EXTENSION_NAMESPACE.
     *
     * @param name     the name of the function without a prefix. It replaces an installed function
     *                 with the same name, also a built-in one
     * @param function is cloned. The clone is never freed, also not when it is replaced. If clone()
     *                 throws, nothing is installed
     */
    void installExternalFunction(const I18NString& name, const TqXsltFunction& function);

    /**
     * Sets a top-level stylesheet parameter for all later transforms of this transformer. A
     * parameter cannot be removed.
     *
     * @param name  a QName: "p", or "x:p" with a prefix that each stylesheet declares. After any
     *              other name, all transforms of this transformer fail with -1
     * @param value a string in the stylesheet. It must not contain an apostrophe: the value is
     *              passed between apostrophes without escaping, so the engine refuses or misreads
     *              it in later transforms. If memory runs out, all parameters stay unchanged,
     *              unless the table of the engine is damaged (see docs/engine-faults.md)
     */
    void setStylesheetParam(const I18NString& name, const I18NString& value);

    /**
     * Creates an in-memory document without a mode. Include vexa/Dom2Dom.h to use it.
     *
     * @return never null. The caller owns it, and must destroy it before this transformer
     */
    std::unique_ptr<Dom2Dom> createDom2Dom();

    /**
     * Returns the error message of the last failure, in the platform's default encoding. Read it
     * only after a failure: a success may not clear it.
     *
     * Empty if there was no failure; never null. The pointer is valid until the next operation of
     * this transformer or of one of its in-memory documents: copy the text.
     */
    const char* getLastError() const;

    /**
     * File transform: transforms a file into a file.
     *
     * @param sourceFile     file name or URI of the source; "%" begins a URI escape. An empty name
     *                       is refused
     * @param stylesheetFile file name or URI of the stylesheet; "%" begins a URI escape
     * @param outputFile     file name of the result; "%" has no special meaning. After a failure
     *                       the file may contain a part of the result
     * @retval 0  success
     * @retval -1 the stylesheet is wrong or ended the transform, or the result could not be written
     * @retval -2 the source or the stylesheet is missing or not well-formed, or the name of the
     *            source is empty
     * @retval -3 another error of the XML parser
     * @retval -4 an error of the document tree
     */
    int doTransform(const I18NString& sourceFile, const I18NString& stylesheetFile,
                    const I18NString& outputFile);

    /**
     * Stream transform: transforms a stream into a stream.
     *
     * Unlike the other operations, a stream transform does not clear an earlier error message of an
     * in-memory transform or of a query: getLastError() still returns it.
     *
     * @param source         the source, read to its end. Relative references in it are resolved
     *                       against the working directory
     * @param stylesheetFile file name or URI of the stylesheet; "%" begins a URI escape
     * @param output         receives the result, followed by one NUL character. After a failed
     *                       transform it has the part that was written so far, and the NUL. If the
     *                       source is not well-formed, nothing is written. After an exception there
     *                       is no NUL
     * @return as for the file transform
     */
    int doTransform(std::istream& source, const I18NString& stylesheetFile, std::ostream& output);

    /**
     * In-memory transform: transforms an in-memory document into another one, or writes the result
     * to a stream. Every exception is caught and reported.
     *
     * If the parse of `in` has failed, its result code is returned, and getLastError() returns the
     * last message of the engine.
     *
     * @param in         a document in input mode, or a document output; not changed
     * @param stylesheet file name or URI of the stylesheet; "%" begins a URI escape
     * @param out        a document output or a stream output
     * @retval 0  success
     * @retval -1 an XSLException: the stylesheet is wrong or ended the transform, the result could
     *            not be written, or `out` is not an output
     * @retval -2 a SAXParseException or SAXException: the stylesheet is missing or not well-formed,
     *            or `in` has no document
     * @retval -3 an XMLException
     * @retval -4 a XalanDOMException: a second document element, or text at the top level, for a
     *            document output
     * @retval -5 any other exception
     */
    int doTransform(Dom2Dom& in, const I18NString& stylesheet, Dom2Dom& out);

    /**
     * XPath query: evaluates an expression over an in-memory document. Stylesheet parameters and
     * extension functions are not used. Every exception is caught and reported.
     *
     * A string is written as text in the platform's default encoding, without a newline. A node-set
     * with exactly one node is written as XML in UTF-8, without an XML declaration; nothing is
     * written for an attribute or a namespace node. Nothing is written for any other result: use
     * string() for a number or a boolean.
     *
     * @param document   its document node is the context node. The expression can use the prefixes
     *                   that the document declares
     * @param expression the expression. One that would overflow the stack that the calling thread
     *                   has left is refused with -1. 8 MiB are enough for 7,000 nested brackets, or
     *                   for 29,000 steps or operators in a row
     * @param out        receives the text. If a node cannot be written, the result is -1; if a
     *                   string cannot be written, only the state of the stream shows it
     * @return as for the in-memory transform; -1 for a wrong expression, and if there is no
     * document
     */
    int doXPath(Dom2Dom& document, const I18NString& expression, std::ostream& out);

    /**
     * Whether sources are parsed into a Xerces DOM instead of the Xalan source tree. The default is
     * false: the Xalan source tree is several times smaller. The setting applies to the whole
     * process: change it only while no transformer is in use.
     *
     * With a Xerces DOM, a source with an unknown version in its XML declaration (such as 1.2)
     * makes the parser throw a xercesc::DOMException, which passes to the caller. Destroy the
     * exception before the last TQXslTransformer_Terminate().
     */
    static bool m_bUseXercesDOM;

private:
    friend class Dom2Dom;

    VEXA_LOCAL int transformParsedSource(const VEXA_ENGINE_NAMESPACE::XalanParsedSource& source,
                                         const I18NString& stylesheetFile,
                                         VEXA_ENGINE_NAMESPACE::XSLTResultTarget& target);
    VEXA_LOCAL void transformInMemory(Dom2Dom& in, const I18NString& stylesheet, Dom2Dom& out);

    I18NString m_strLastError;
    std::unique_ptr<VEXA_ENGINE_NAMESPACE::XalanTransformer> m_pTransformer;
    /** Maps a name to a value with its apostrophes. */
    std::map<I18NString, I18NString> m_mapParams;
    /** Maps a name to a clone. The clones are never freed. */
    std::map<I18NString, TqXsltFunction*> m_mapFunctions;
};
