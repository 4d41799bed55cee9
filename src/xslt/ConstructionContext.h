/**
 * @file
 * What the engine reports while it compiles an expression.
 */
#pragma once

#include "xslt/OperationProblems.h"

#include "engine/EngineMemory.h"

#include <xalanc/XPath/XPathConstructionContextDefault.hpp>
#include <xalanc/XPath/XalanXPathException.hpp>

/** Throws the engine's exception at an error. The engine's own context prints it too. */
class ConstructionContext : public xalanc::XPathConstructionContextDefault {
public:
    ConstructionContext(xercesc::MemoryManager& memory, Operation& operation)
        : XPathConstructionContextDefault(memory), m_problems(operation) {}

    void problem(eSource source, eClassification classification, const xalanc::XalanDOMString& text,
                 const xalanc::Locator* locator, const xalanc::XalanNode* node) override {
        if (classification == eError) {
            throw xalanc::XalanXPathException(text, engineMemory(), locator);
        }
        m_problems.problem(source, classification, text, locator, node);
    }
    void problem(eSource source, eClassification classification, const xalanc::XalanDOMString& text,
                 const xalanc::XalanNode* node) override {
        problem(source, classification, text, nullptr, node);
    }

private:
    OperationProblems m_problems;
};
