#include <vexa/VEXAXslTransformer.h>

#include "engine/EngineStrings.h"
#include "engine/IcuCollation.h"
#include "engine/IcuNumberFormat.h"
#include "engine/PrivateEngine.h"
#include "functions/FunctionMap.h"
#include "transformer/ExceptionReport.h"
#include "transformer/SourceDocument.h"
#include "transformer/StylesheetParams.h"

#include <vexa/Dom2Dom.h>

#include <xalanc/XSLT/StylesheetConstructionContextDefault.hpp>
#include <xalanc/XSLT/XSLTInputSource.hpp>
#include <xalanc/XSLT/XSLTResultTarget.hpp>
#include <xalanc/XalanSourceTree/FormatterToSourceTree.hpp>

using xalanc::XalanDOMString;
using xalanc::XSLTInputSource;

namespace {

/**
 * A transform sets the engine's prefix resolver in the formatter, which outlives the engine. The
 * destructor resets it.
 */
class PrefixResolverGuard {
public:
    explicit PrefixResolverGuard(xalanc::FormatterListener* formatter) : m_pFormatter(formatter) {}
    PrefixResolverGuard(const PrefixResolverGuard&) = delete;
    PrefixResolverGuard& operator=(const PrefixResolverGuard&) = delete;
    ~PrefixResolverGuard() {
        if (m_pFormatter) {
            m_pFormatter->setPrefixResolver(nullptr);
        }
    }

private:
    xalanc::FormatterListener* m_pFormatter;
};

/** An execution context with the services of ICU. */
class ExecutionContext {
public:
    explicit ExecutionContext(PrivateEngine& engine)
        : m_context(engineMemory(), engine.processor, engine.environment, engine.domSupport,
                    engine.objectFactory, nullptr, nullptr, nullptr) {
        m_context.installCollationCompareFunctor(&m_collation);
        m_context.installFormatNumberFunctor(&m_numberFormat);
    }

    xalanc::StylesheetExecutionContextDefault& get() { return m_context; }

private:
    IcuCollation m_collation;
    IcuNumberFormat m_numberFormat;
    xalanc::StylesheetExecutionContextDefault m_context;
};

} // namespace

int VEXAXslTransformer::doTransform(Dom2Dom& in, const I18NString& stylesheet, Dom2Dom& out) {
    m_strLastError = I18NString();
    if (in.m_bInputInitialized && in.m_nParseResult != 0) {
        return in.m_nParseResult;
    }
    return runGuarded(IN_MEMORY_TRANSFORM, m_strLastError,
                      [&] { transformInMemory(in, stylesheet, out); });
}

void VEXAXslTransformer::transformInMemory(Dom2Dom& in, const I18NString& stylesheet,
                                           Dom2Dom& out) {
    const SourceDocument document(in.GetDocument());
    PrivateEngine engine([this](xalanc::XSLTProcessorEnvSupportDefault& environment) {
        installFunctions(m_mapFunctions,
                         [&](const auto& namespaceUri, const auto& name, const auto& function) {
                             environment.installExternalFunctionLocal(namespaceUri, name, function);
                         });
    });
    const PrefixResolverGuard resolverGuard(out.m_pFormatter.get());

    XSLTInputSource source;
    source.setNode(document.get());
    xalanc::XPathFactoryDefault stylesheetXPathFactory;
    xalanc::StylesheetConstructionContextDefault construction(
        engineMemory(), engine.processor, stylesheetXPathFactory, 1024, 128, 128, 128, 32, 512);
    ExecutionContext execution(engine);

    const XSLTInputSource stylesheetFile(toEngineString(stylesheet));
    XSLTInputSource stylesheetDocument(
        engine.parserLiaison.parseXMLStream(stylesheetFile, XalanDOMString()));
    // The base for imports, includes and document().
    stylesheetDocument.setSystemId(stylesheetFile.getSystemId());

    setStylesheetParams(m_mapParams, engine.processor);
    // Without a target the engine would crash; for an empty target it reports an error.
    xalanc::XSLTResultTarget noTarget;
    engine.processor.process(source, stylesheetDocument,
                             out.m_pResultTarget ? *out.m_pResultTarget : noTarget, construction,
                             execution.get());
}
