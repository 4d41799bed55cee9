/**
 * @file
 * In-memory documents: input and output of in-memory transforms.
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
 * An in-memory document. Transforms can be chained without text between them:
 *
 *     auto source = transformer.createDom2Dom();
 *     auto result = transformer.createDom2Dom();
 *     if (source->InitializeInputSource("<order/>") && result->InitializeOutputTarget() &&
 *         transformer.doTransform(*source, "report.xsl", *result) == 0) {
 *         result->Serialize(std::cout);
 *     }
 *
 * The mode is set once, by one of the Initialize operations:
 * - input: a parsed document, the source of transforms and queries;
 * - document output: receives one result as a document, and can then be the source of transforms
 *   and queries;
 * - stream output: writes results to a stream as text.
 *
 * Ownership: the object owns its document. It uses the engine of its transformer: destroy it before
 * the transformer.
 *
 * Threads: used by one thread at a time, together with its transformer.
 *
 * Failures: after a failed parse, getLastError() returns the error message. A second attempt to set
 * the mode returns false without a message.
 *
 * Exceptions: pass to the caller, except the XSLException that Serialize() reports. If an output
 * mode could not be set because memory was exhausted, the object is no longer usable: create a new
 * one.
 */
class VEXA_EXPORT Dom2Dom {
public:
    /**
     * Creates a document without a mode, like VEXAXslTransformer::createDom2Dom().
     * @param transformer must not be null, and must outlive this object
     */
    explicit Dom2Dom(VEXAXslTransformer* transformer);
    Dom2Dom(const Dom2Dom&) = delete;
    Dom2Dom& operator=(const Dom2Dom&) = delete;
    /** Frees the document. */
    ~Dom2Dom();

    /**
     * Sets the input mode, and parses a document.
     *
     * @param text the whole document, NUL-terminated, in the encoding that it declares; UTF-8 if it
     *             declares none. Null is treated as an empty text. The text is not used after the
     *             call
     * @return true if the document was parsed; false if the parse failed, or if the mode was
     *         already set. After a failed parse the mode stays set: create a new object to try
     *         again
     */
    bool InitializeInputSource(const char* text);

    /**
     * Sets the input mode, and parses a document from a stream.
     *
     * @param stream   read to its end. If it throws (see std::ios::exceptions), the exception
     *                 passes to the caller, and the mode is not set
     * @param systemId URI or file name of the document, in the platform's default encoding.
     *                 Relative references in the document are resolved against it, and error
     *                 messages contain it. Null is treated as an empty text
     * @return as for the parse of a text
     */
    bool InitializeInputSource(std::istream& stream, const char* systemId);

    /**
     * Sets the document output mode: a transform builds its result as a document here. A document
     * has one document element, and no text outside it. A second result therefore fails with -4 at
     * its first element or text, and the first document element stays unchanged; comments and
     * processing instructions before the failure are added. A second result that has only comments
     * and processing instructions succeeds, and they are added. A transform that fails midway
     * leaves the part that it has built: create a new object.
     *
     * The output settings of the stylesheet (xsl:output) do not apply. The text of CDATA sections
     * is added as text.
     *
     * @return true if the mode was set; false if it was already set
     */
    bool InitializeOutputTarget();

    /**
     * Sets the stream output mode: transforms write their results to a stream as text, as the
     * output settings of the stylesheet (xsl:output) say, one after the other.
     *
     * @param stream must stay valid as long as this object is used as an output
     * @return true if the mode was set; false if it was already set
     */
    bool InitializeOutputTarget(std::ostream& stream);

    /**
     * Writes the document of a document output as XML in UTF-8: the XML declaration, the document
     * element with its content, a newline and one NUL character. Comments and processing
     * instructions outside the document element are left out.
     *
     * A document output without a result writes the XML declaration, the newline and the NUL. An
     * object in any other mode, or without a mode, writes the newline and the NUL.
     *
     * @param os its error state is cleared first. Check its state after the call for write errors
     * @return 0; -1 after an XSLException of the engine: the newline and the NUL are then missing,
     *         and getLastError() returns the error message. A success does not clear an earlier
     *         message
     * @throws xercesc::SAXException for a character that XML does not allow, such as U+0001 from an
     *         extension function; whatever the stream throws
     */
    int Serialize(std::ostream& os);

    /**
     * Returns the document; null before a successful initialization and for a stream output. The
     * document is valid as long as this object, which owns it.
     */
    VEXA_ENGINE_NAMESPACE::XalanDocument* GetDocument() const { return m_pDocument; }

    /**
     * Returns the error message of the last failure, in the platform's default encoding: that of
     * Serialize() if there is one, otherwise the last message of the transformer's engine, from its
     * last parse or its last file or stream transform. Read the message of a failed parse before
     * the next parse.
     *
     * Empty if there is none; never null. The pointer is valid until the next operation of this
     * object, of its transformer, or of another in-memory document of the transformer: copy the
     * text.
     */
    const char* getLastError() const;

private:
    friend class VEXAXslTransformer;

    /** Frees engine objects through the engine transformer that created them. */
    struct VEXA_LOCAL EngineRelease {
        VEXA_ENGINE_NAMESPACE::XalanTransformer* engine;
        void operator()(const VEXA_ENGINE_NAMESPACE::XalanParsedSource* source) const;
        void operator()(VEXA_ENGINE_NAMESPACE::XalanDocumentBuilder* builder) const;
    };

    bool hasMode() const { return m_bInputInitialized || m_bOutputInitialized; }
    VEXA_LOCAL bool parse(std::istream& stream, const char* systemId);

    // Members are destroyed in reverse order: the builder with its document, the formatter that
    // wrote to it, the target that passed the events to the formatter, the parsed source.
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
