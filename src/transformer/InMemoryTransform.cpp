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

#include <iostream>

#include <xalanc/XSLT/StylesheetConstructionContextDefault.hpp>
#include <xalanc/XSLT/XSLTInputSource.hpp>
#include <xalanc/XSLT/XSLTResultTarget.hpp>
#include <xalanc/XalanSourceTree/FormatterToSourceTree.hpp>
#include <xalanc/XalanTransformer/XalanTransformerProblemListener.hpp>

using xalanc::XalanDOMString;
using xalanc::XSLTInputSource;

namespace {

/**
 * A run leaves the engine's prefix resolver with the formatter, which lives on in its holder when
 * the engine is gone. This takes it away again, whichever way the run ends.
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

/** An execution context over the engine, with ICU's services. */
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
    // Messages of the stylesheet go where the engine transformer of the other transforms puts them.
    xalanc::XalanTransformerProblemListener messages(engineMemory(), &std::cerr, nullptr);
    PrivateEngine engine([this](xalanc::XSLTProcessorEnvSupportDefault& environment) {
        installFunctions(m_mapFunctions,
                         [&](const auto& namespaceUri, const auto& name, const auto& function) {
                             environment.installExternalFunctionLocal(namespaceUri, name, function);
                         });
    });
    engine.processor.setProblemListener(&messages);
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
    // Imports, includes and document() are resolved against the stylesheet's place.
    stylesheetDocument.setSystemId(stylesheetFile.getSystemId());

    setStylesheetParams(m_mapParams, engine.processor);
    // Without a target the engine would crash; with an empty one it reports that it has none.
    xalanc::XSLTResultTarget noTarget;
    engine.processor.process(source, stylesheetDocument,
                             out.m_pResultTarget ? *out.m_pResultTarget : noTarget, construction,
                             execution.get());
}
