#include <vexa/VEXAXslTransformer.h>

#include "engine/DocumentPrefixes.h"
#include "engine/EngineStrings.h"
#include "engine/ExpressionGuard.h"
#include "engine/PrivateEngine.h"
#include "engine/XmlWriter.h"
#include "transformer/ExceptionReport.h"
#include "transformer/SourceDocument.h"

#include <vexa/Dom2Dom.h>
#include <vexa/TqXsltFunction.h>

#include <ostream>

#include <xalanc/XPath/NodeRefListBase.hpp>
#include <xalanc/XPath/XObject.hpp>
#include <xalanc/XPath/XPathEvaluator.hpp>
#include <xalanc/XPath/XalanXPathException.hpp>

using xalanc::XalanDOMString;

namespace {

/** Writes a string or a single node; nothing for any other result. */
void print(const xalanc::XObject& result, std::ostream& out) {
    if (result.getType() == xalanc::XObject::eTypeNodeSet) {
        const xalanc::NodeRefListBase& nodes = result.nodeset();
        if (nodes.getLength() == 1) {
            writeXml(out, nodes.item(0), XmlDeclaration::LeftOut);
        }
    } else if (result.getType() == xalanc::XObject::eTypeString) {
        // OutputString of the engine splits surrogate pairs.
        int length = 0;
        const I18NString text = TqXsltFunction::XalanDOMStringToI18NString(result.str());
        const char* const narrow = text.c_str(nullptr, &length);
        out.write(narrow, length); // unlike operator<<, ignores the width of the stream
    }
}

void query(xalanc::XalanDocument* document, const I18NString& expression, std::ostream& out) {
    if (!document) {
        throw xalanc::XalanXPathException(XalanDOMString("There is no document to query."),
                                          engineMemory());
    }
    const SourceDocument source(document);
    // The evaluator needs only the DOM support of the engine. All objects are created: this is
    // guaranteed.
    PrivateEngine engine;
    engine.domSupport.setParserLiaison(&engine.parserLiaison);
    xalanc::XPathEvaluator evaluator;
    const DocumentPrefixes prefixes(source.get());
    const XalanDOMString xpath = toEngineString(expression);
    rejectTooDeepExpression({xpath.c_str(), xpath.length()});
    const xalanc::XObjectPtr result =
        evaluator.evaluate(engine.domSupport, source.get(), xpath.c_str(), prefixes);
    print(*result, out);
}

} // namespace

int VEXAXslTransformer::doXPath(Dom2Dom& document, const I18NString& expression,
                                std::ostream& out) {
    m_strLastError = I18NString();
    if (document.m_bInputInitialized && document.m_nParseResult != 0) {
        return document.m_nParseResult;
    }
    return runGuarded(XPATH_QUERY, m_strLastError,
                      [&] { query(document.GetDocument(), expression, out); });
}
