/**
 * @file
 * The transformer: runs XSLT 1.0 stylesheets over XML documents.
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
 * Runs transforms with one set of stylesheet parameters and extension functions.
 *
 *     VEXAXslTransformer transformer;
 *     transformer.setStylesheetParam("currency", "EUR");
 *     if (transformer.doTransform("orders.xml", "report.xsl", "report.html") != 0) {
 *         std::cerr << transformer.getLastError() << '\n';
 *     }
 *
 * Ownership: a transformer owns its engine. It keeps the source of every transform of files or
 * streams until it is destroyed: 6 to 12 times the source's size, plus about 130 KB for each
 * transform. A process that runs on and on should therefore renew its transformer now and then.
 * Documents in memory go with their holders. The clones made by installExternalFunction() are never
 * freed.
 *
 * Threads: one transformer is used by one thread at a time. Transformers in different threads work
 * side by side, unless their stylesheets use timers, which all transformers share without a lock.
 * Create them after TQXslTransformer_Initialize(), and destroy them before the
 * matching TQXslTransformer_Terminate().
 *
 * Failures: an operation tells of a failure by a non-zero result, and getLastError() then gives the
 * reason. The transformer stays usable.
 *
 * Exceptions: the operations over documents in memory catch every exception and report it; only a
 * lack of memory for the report itself passes. All others catch none: what the string class, the
 * memory allocation or an extension function throws passes to the caller, and so does what the
 * engine throws and does not catch itself.
 *
 * The engine prints some diagnostics on std::cerr by itself: texts of xsl:message, warnings and
 * parse errors.
 */
class VEXA_EXPORT VEXAXslTransformer {
public:
    /**
     * Makes a transformer with no parameters, an empty error text, and the library's own functions:
     * GetLocalizedString, GetDateTime, TimerCreate, TimerStart, TimerStop, TimerTotal, TimerReset
     * and TimerDestroy.
     */
    VEXAXslTransformer();
    VEXAXslTransformer(const VEXAXslTransformer&) = delete;
    VEXAXslTransformer& operator=(const VEXAXslTransformer&) = delete;
    /** Its holders must be gone, and the library still started. */
    ~VEXAXslTransformer();

    /**
     * Offers an extension function to the stylesheets of all later transforms, in the namespace
     * VEXA_XSL_EXTENSION_NAMESPACE.
     *
     * @param name     the function's name there, without a prefix; a function that has that name
     *                 already, one of the library's own too, is replaced for this transformer only
     * @param function is cloned; the clone, and one that it replaces, is never freed. If the clone
     *                 throws, nothing is installed
     */
    void installExternalFunction(const I18NString& name, const TqXsltFunction& function);

    /**
     * Sets a top-level parameter for the stylesheets of all later transforms.
     *
     * @param name  the parameter's name, a QName: "p", or "x:p" with a prefix that each stylesheet
     *              declares. Nothing takes a parameter back: after any other name all transforms of
     *              this transformer fail with -1
     * @param value its value, which the stylesheet sees as a string. It must not hold an
     *              apostrophe: it is passed on between apostrophes, and nothing is escaped. The
     *              engine refuses or misreads such a value at the next transforms. If memory runs
     *              out, all parameters stay as they were, unless the engine's own table breaks (see
     *              docs/engine-faults.md)
     */
    void setStylesheetParam(const I18NString& name, const I18NString& value);

    /**
     * Makes a holder for a document in memory. Include vexa/Dom2Dom.h to use it.
     *
     * @return belongs to the caller, and must be destroyed before this transformer; never null
     */
    std::unique_ptr<Dom2Dom> createDom2Dom();

    /**
     * The reason of the last failure, in the platform's default encoding. Look at it after a
     * failure: a success need not clear it.
     *
     * Empty if there was no failure; never null. The pointer lives until the next operation of this
     * transformer or of one of its holders: copy the text.
     */
    const char* getLastError() const;

    /**
     * Transforms a file into a file.
     *
     * @param sourceFile     file name or URI of the document; a "%" is read as the start of a URI
     *                       escape. An empty name is refused
     * @param stylesheetFile file name or URI of the stylesheet, under the same rules
     * @param outputFile     file name of the result, taken literally. After a failure it may hold a
     *                       part of the result
     * @retval 0  done
     * @retval -1 the stylesheet is wrong or ended the transform, or the result could not be written
     * @retval -2 the document or the stylesheet is missing or not well-formed, or the name of the
     *            document is empty
     * @retval -3 another error of the XML parser
     * @retval -4 an error of the document tree
     */
    int doTransform(const I18NString& sourceFile, const I18NString& stylesheetFile,
                    const I18NString& outputFile);

    /**
     * Transforms a stream into a stream.
     *
     * An earlier error text of an in-memory transform or a query stays in place, and getLastError()
     * goes on to give it: the other transforms clear it.
     *
     * @param source         the document, read to its end. It has no base: relative references in
     *                       it are resolved against the working directory
     * @param stylesheetFile file name or URI of the stylesheet; a "%" is read as the start of a URI
     *                       escape
     * @param output         receives the result, followed by one NUL character. A failed transform
     *                       leaves the part written so far, and the NUL. A document that is not
     *                       well-formed leaves it untouched, and an exception leaves no NUL
     * @return as for the transform of files
     */
    int doTransform(std::istream& source, const I18NString& stylesheetFile, std::ostream& output);

    /**
     * Transforms a document in memory into another, or onto a stream, without turning the source
     * into text. Every exception is caught and reported.
     *
     * If the parse of `in` had failed, its result is given again, and getLastError() has the
     * engine's last message.
     *
     * @param in         an input holder, or a document output that has received a result; not
     *                   changed
     * @param stylesheet file name or URI of the stylesheet; a "%" is read as the start of a URI
     *                   escape
     * @param out        a holder with the output role
     * @retval 0  done
     * @retval -1 an XSLException: the stylesheet is wrong or ended the transform, the result could
     *            not be written, or `out` has no output role
     * @retval -2 a SAXParseException or SAXException: the stylesheet is missing or not well-formed,
     *            or `in` has no document
     * @retval -3 an XMLException
     * @retval -4 a XalanDOMException: a second element, or text outside an element, for a document
     *            output
     * @retval -5 any other exception
     */
    int doTransform(Dom2Dom& in, const I18NString& stylesheet, Dom2Dom& out);

    /**
     * Evaluates an XPath expression over a document in memory. Stylesheet parameters and extension
     * functions play no part. Every exception is caught and reported.
     *
     * A string is written as text in the platform's default encoding, without a line end. A
     * node-set of exactly one node is written as XML in UTF-8, without a declaration; of an
     * attribute or a namespace node alone nothing is written. Nothing is written for any other
     * result: wrap a number or a boolean in string().
     *
     * @param holder     holds the document, which is the context node; prefixes in the expression
     *                   are those that the document declares
     * @param expression the expression. One that would overflow the stack that the calling thread
     *                   has left is refused with -1. 8 MiB are enough for 7,000 nested brackets, or
     *                   for 29,000 steps or operators in a row
     * @param out        receives the text. Its state tells whether it took a string; a node that
     *                   it does not take is reported with -1
     * @return as for the in-memory transform; a wrong expression is -1, and so is a holder without
     *         a document
     */
    int doXPath(Dom2Dom& holder, const I18NString& expression, std::ostream& out);

    /**
     * Whether documents are parsed into the XML parser's own tree (a Xerces DOM) instead of the
     * XSLT processor's, which is several times smaller; false unless a host sets it. It holds for
     * the whole process: set it while no transformer is at work.
     *
     * With that tree, a source with an odd version in its XML declaration (1.2) makes the parser
     * throw a xercesc::DOMException, which passes to the caller. Let go of it before the last stop.
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
    /** Name to value; the values carry their apostrophes. */
    std::map<I18NString, I18NString> m_mapParams;
    /** Name to clone; the clones stay allocated for as long as the process lives. */
    std::map<I18NString, TqXsltFunction*> m_mapFunctions;
};
