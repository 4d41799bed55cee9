#include <vexa/VEXAXslTransformer.h>

#include "engine/DocumentPrefixes.h"
#include "engine/EngineStrings.h"
#include "engine/ExpressionGuard.h"
#include "engine/PrivateEngine.h"
#include "engine/XmlWriter.h"
#include "transformer/ExceptionReport.h"

#include <vexa/Dom2Dom.h>
#include <vexa/TqXsltFunction.h>

#include <ostream>

#include <xalanc/XPath/NodeRefListBase.hpp>
#include <xalanc/XPath/XObject.hpp>
#include <xalanc/XPath/XPathEvaluator.hpp>
#include <xalanc/XPath/XalanXPathException.hpp>
#include <xalanc/XalanDOM/XalanDocument.hpp>

using xalanc::XalanDOMString;

namespace {

[[noreturn]] void refuse(const char* reason) {
    throw xalanc::XalanXPathException(XalanDOMString(reason), engineMemory());
}

/** The engine crashes over many expressions where there is no document, or none with an element. */
void refuseWithoutDocumentElement(const xalanc::XalanDocument* document) {
    if (!document) {
        refuse("The holder has no document to query.");
    }
    if (!document->getDocumentElement()) {
        refuse("The document to query has no document element.");
    }
}

/** Only a string or a single node has a text. */
void print(const xalanc::XObject& result, std::ostream& out) {
    if (result.getType() == xalanc::XObject::eTypeNodeSet) {
        const xalanc::NodeRefListBase& nodes = result.nodeset();
        if (nodes.getLength() == 1) {
            writeXml(out, nodes.item(0), XmlDeclaration::LeftOut);
        }
    } else if (result.getType() == xalanc::XObject::eTypeString) {
        // The engine's own output would break characters beyond the basic plane.
        int length = 0;
        const I18NString text = TqXsltFunction::XalanDOMStringToI18NString(result.str());
        const char* const narrow = text.c_str(nullptr, &length);
        out.write(narrow, length); // whatever width the caller's stream is set to
    }
}

void query(xalanc::XalanDocument* document, const I18NString& expression, std::ostream& out) {
    refuseWithoutDocumentElement(document);
    // It evaluates nothing itself, but the evaluator reads the document through its supports.
    PrivateEngine engine;
    engine.domSupport.setParserLiaison(&engine.parserLiaison);
    xalanc::XPathEvaluator evaluator;
    const DocumentPrefixes prefixes(document);
    const XalanDOMString xpath = toEngineString(expression);
    refuseTooDeepExpression({xpath.c_str(), xpath.length()});
    const xalanc::XObjectPtr result =
        evaluator.evaluate(engine.domSupport, document, xpath.c_str(), prefixes);
    print(*result, out);
}

} // namespace

int VEXAXslTransformer::doXPath(Dom2Dom& holder, const I18NString& expression, std::ostream& out) {
    m_strLastError = I18NString();
    if (holder.m_bInputInitialized && holder.m_nParseResult != 0) {
        return holder.m_nParseResult;
    }
    return runGuarded(XPATH_QUERY, m_strLastError,
                      [&] { query(holder.GetDocument(), expression, out); });
}
