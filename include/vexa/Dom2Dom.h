/**
 * @file
 * A document in memory: input or output of an in-memory transform.
 */
#pragma once

#include <nrb/I18NString.h>
#include <vexa/VEXAConfig.h>
#include <vexa/VEXAExport.h>

#include <iosfwd>
#include <memory>

class VEXAXslTransformer;

namespace VEXA_ENGINE_NAMESPACE {
class FormatterToSourceTree;
class XalanDocument;
class XalanDocumentBuilder;
class XalanParsedSource;
class XalanTransformer;
class XSLTResultTarget;
} // namespace VEXA_ENGINE_NAMESPACE

/**
 * Holds one document, so that transforms can be chained without turning it into text between them.
 *
 *     auto source = transformer.createDom2Dom();
 *     auto result = transformer.createDom2Dom();
 *     if (source->InitializeInputSource("<order/>") && result->InitializeOutputTarget() &&
 *         transformer.doTransform(*source, "report.xsl", *result) == 0) {
 *         result->Serialize(std::cout);
 *     }
 *
 * A holder takes one role, once: an input (a parsed document), a document output (an empty document
 * that receives a result) or a stream output (a result goes to a stream as text). A document output
 * that has received its result may be the input of further transforms and queries.
 *
 * Ownership: a holder owns its document. It borrows its transformer's engine and must be destroyed
 * before that transformer.
 *
 * Threads: a holder belongs to its transformer's thread.
 *
 * Failures: a failed parse has its reason in getLastError(); a role taken a second time is refused
 * without one.
 *
 * Exceptions: they pass to the caller; only Serialize reports one of the engine's itself. A holder
 * whose output role could not be built for lack of memory is spent: take a new one.
 */
class VEXA_EXPORT Dom2Dom {
public:
    /**
     * A holder without a role; VEXAXslTransformer::createDom2Dom() makes one, too.
     * @param transformer must not be null, and must outlive the holder
     */
    explicit Dom2Dom(VEXAXslTransformer* transformer);
    Dom2Dom(const Dom2Dom&) = delete;
    Dom2Dom& operator=(const Dom2Dom&) = delete;
    /** Destroys the document with the holder, whatever state it is in. */
    ~Dom2Dom();

    /**
     * Takes the input role: parses a document.
     *
     * @param text the whole document, NUL-terminated, in the encoding that it declares, or in UTF-8
     *             where it declares none. Null is taken as an empty text. Not needed afterwards
     * @return true if there is a document now; false if the parse failed, or if the holder had a
     *         role already. After a failed parse the holder keeps the input role: take a new one to
     *         try again
     */
    bool InitializeInputSource(const char* text);

    /**
     * Takes the input role: parses a document from a stream.
     *
     * @param stream   is read to its end. If it throws (see std::ios::exceptions), that exception
     *                 passes, and the holder has no role
     * @param systemId the document's URI or file name, in the platform's default encoding: relative
     *                 references in the document are resolved against it, and error texts name it;
     *                 null is taken as an empty one
     * @return as for the parse of a text
     */
    bool InitializeInputSource(std::istream& stream, const char* systemId);

    /**
     * Takes the output role: a transform builds its result as a document here. A document has one
     * element and no text outside it: a second result fails with -4 as soon as it comes to an
     * element or to text, and the element of the first stays as it is. Comments and processing
     * instructions of a second result are added, also those that come before such a failure.
     * A transform that fails half way leaves what it had built: take a new holder.
     *
     * Of a stylesheet's output settings none applies to a document: no output method, no encoding,
     * no CDATA sections (their text is kept).
     *
     * @return true if the holder has taken the role; false if it had one already
     */
    bool InitializeOutputTarget();

    /**
     * Takes the output role: a transform writes its result to a stream as text, as the stylesheet's
     * output settings say. Several results follow one another.
     *
     * @param stream is kept, and must live as long as the holder is used
     * @return true if the holder has taken the role; false if it had one already
     */
    bool InitializeOutputTarget(std::ostream& stream);

    /**
     * Writes the document of a document output as XML: the declaration, the document element with
     * its subtree (comments and processing instructions beside it are left out), a line feed and
     * one NUL character. A holder of another role writes only the line feed and the NUL.
     *
     * The text is in UTF-8. A document output without a result gives the declaration, the line feed
     * and the NUL.
     *
     * @param os its error state is cleared first; its state afterwards tells whether it took the
     *           text
     * @return 0; -1 if the engine reported an XSLException, with the reason in getLastError(): then
     *         the line feed and the NUL are missing. A success leaves an earlier reason in place
     * @throws xercesc::SAXException for a character that XML cannot hold (U+0001, from a function,
     *         say); whatever the stream throws
     */
    int Serialize(std::ostream& os);

    /**
     * The document; null before a successful initialisation, and for a stream output. It belongs to
     * the holder and lives as long as the holder does.
     */
    VEXA_ENGINE_NAMESPACE::XalanDocument* GetDocument() const { return m_pDocument; }

    /**
     * The reason of the last failure, in the platform's default encoding. It is the holder's own
     * (from Serialize), or else the last message of the transformer's engine: that of its last
     * parse, or of its last transform of a file or a stream. Read the reason of a failed parse
     * before the next one.
     *
     * Empty if there is none; never null. The pointer lives until the next operation of the holder,
     * its transformer, or another of its holders: copy the text.
     */
    const char* getLastError() const;

private:
    friend class VEXAXslTransformer;

    /** Gives objects of the engine back to the engine transformer that made them. */
    struct VEXA_LOCAL EngineRelease {
        VEXA_ENGINE_NAMESPACE::XalanTransformer* engine;
        void operator()(const VEXA_ENGINE_NAMESPACE::XalanParsedSource* source) const;
        void operator()(VEXA_ENGINE_NAMESPACE::XalanDocumentBuilder* builder) const;
    };

    bool hasRole() const { return m_bInputInitialized || m_bOutputInitialized; }
    VEXA_LOCAL bool parse(std::istream& stream, const char* systemId);

    // Destroyed from the last to the first: the builder with its document, the formatter that wrote
    // to it, the target that fed the formatter, the parsed source.
    VEXA_ENGINE_NAMESPACE::XalanTransformer* m_pTransformer;
    VEXA_ENGINE_NAMESPACE::XalanDocument* m_pDocument = nullptr;
    bool m_bInputInitialized = false;
    std::unique_ptr<const VEXA_ENGINE_NAMESPACE::XalanParsedSource, EngineRelease> m_pParsedSource;
    int m_nParseResult = 0;
    bool m_bOutputInitialized = false;
    std::unique_ptr<VEXA_ENGINE_NAMESPACE::XSLTResultTarget> m_pResultTarget;
    std::unique_ptr<VEXA_ENGINE_NAMESPACE::FormatterToSourceTree> m_pFormatter;
    std::unique_ptr<VEXA_ENGINE_NAMESPACE::XalanDocumentBuilder, EngineRelease> m_pDocumentBuilder;
    I18NString m_strLastError;
};
