#include <vexa/Dom2Dom.h>

#include "XmlWriter.h"
#include "transformer/ExceptionReport.h"

#include <ostream>

#include <xalanc/PlatformSupport/XSLException.hpp>
#include <xalanc/XalanDOM/XalanDocument.hpp>
#include <xalanc/XalanDOM/XalanElement.hpp>

int Dom2Dom::Serialize(std::ostream& os) {
    // m_strLastError stays as it was after a success: only a failure writes it.
    try {
        os.clear();
        // A stream output has the role, but no document.
        if (m_bOutputInitialized && m_pDocument) {
            writeXml(os, m_pDocument->getDocumentElement(), XmlDeclaration::Written);
        }
        // Hosts read the text as C text out of a memory stream.
        os << std::endl << std::ends;
        return 0;
    } catch (const xalanc::XSLException& exception) {
        return reportXslException(SERIALISATION, exception, m_strLastError);
    }
}
