/**
 * @file
 * What the engine reports while it compiles and transforms.
 */
#pragma once

#include "xslt/Operation.h"

#include <functional>
#include <utility>

#include <xalanc/XSLT/ProblemListener.hpp>

/** Passes messages and warnings to the operation. Errors come as exceptions. */
class OperationProblems : public xalanc::ProblemListener {
public:
    /** Tells by its locator whether an xsl:message ends the transform. */
    using EndsTransform = std::function<bool(const xercesc::Locator*)>;

    /** @param endsTransform such a message is the text of the error that follows, and left out */
    explicit OperationProblems(Operation& operation, EndsTransform endsTransform = nullptr)
        : m_operation(operation), m_endsTransform(std::move(endsTransform)) {}

    /** Leaves warnings out while a caller looks for itself. */
    void setMuted(bool isMuted) { m_isMuted = isMuted; }

    void setPrintWriter(xalanc::PrintWriter* /*writer*/) override {}
    void problem(eSource source, eClassification classification, const xalanc::XalanDOMString& text,
                 const xercesc::Locator* locator, const xalanc::XalanNode* node) override;
    void problem(eSource source, eClassification classification, const xalanc::XalanDOMString& text,
                 const xalanc::XalanNode* node) override;
    void problem(eSource source, eClassification classification, const xalanc::XalanNode* node,
                 const xalanc::ElemTemplateElement* element, const xalanc::XalanDOMString& text,
                 const xalanc::XalanDOMChar* uri, xalanc::XalanFileLoc line,
                 xalanc::XalanFileLoc column) override;

private:
    void report(eClassification classification, const xalanc::XalanDOMString& text,
                vexa::Location where);

    Operation& m_operation;
    EndsTransform m_endsTransform;
    bool m_isMuted = false;
};
