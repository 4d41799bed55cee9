/**
 * @file
 * What the engine reports while it compiles an expression.
 */
#pragma once

#include "engine/EngineMemory.h"

#include <xalanc/XPath/XPathConstructionContextDefault.hpp>
#include <xalanc/XPath/XalanXPathException.hpp>

/** Throws what the engine reports, which is errors only. The engine's own context prints it too. */
class ConstructionContext : public xalanc::XPathConstructionContextDefault {
public:
    using XPathConstructionContextDefault::XPathConstructionContextDefault;

    [[noreturn]] void problem(eSource /*source*/, eClassification /*classification*/,
                              const xalanc::XalanDOMString& text, const xalanc::Locator* locator,
                              const xalanc::XalanNode* /*node*/) override {
        throw xalanc::XalanXPathException(text, engineMemory(), locator);
    }
    [[noreturn]] void problem(eSource /*source*/, eClassification /*classification*/,
                              const xalanc::XalanDOMString& text,
                              const xalanc::XalanNode* /*node*/) override {
        throw xalanc::XalanXPathException(text, engineMemory());
    }
};
