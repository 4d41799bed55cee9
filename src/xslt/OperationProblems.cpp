#include "xslt/OperationProblems.h"

#include "xslt/Text.h"

#include <utility>

void OperationProblems::problem(eSource /*source*/, eClassification classification,
                                const xalanc::XalanDOMString& text, const xercesc::Locator* locator,
                                const xalanc::XalanNode* /*node*/) {
    if (classification == eMessage && m_endsTransform && m_endsTransform(locator)) {
        return;
    }
    report(classification, text, toLocation(locator));
}

void OperationProblems::problem(eSource /*source*/, eClassification classification,
                                const xalanc::XalanDOMString& text,
                                const xalanc::XalanNode* /*node*/) {
    report(classification, text, {});
}

void OperationProblems::problem(eSource /*source*/, eClassification classification,
                                const xalanc::XalanNode* /*node*/,
                                const xalanc::ElemTemplateElement* /*element*/,
                                const xalanc::XalanDOMString& text, const xalanc::XalanDOMChar* uri,
                                xalanc::XalanFileLoc line, xalanc::XalanFileLoc column) {
    report(classification, text,
           {toUtf8(uri), static_cast<std::size_t>(line), static_cast<std::size_t>(column)});
}

void OperationProblems::report(eClassification classification, const xalanc::XalanDOMString& text,
                               vexa::Location where) {
    const bool isMessage = classification == eMessage;
    // After an error an exception follows.
    if (classification == eError || (m_isMuted && !isMessage)) {
        return;
    }
    m_operation.keepingException([&] {
        m_operation.report(isMessage ? vexa::Severity::Message : vexa::Severity::Warning,
                           isMessage ? toUtf8(text) : cleanText(toUtf8(text)), std::move(where));
    });
}
