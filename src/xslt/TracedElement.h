/**
 * @file
 * The elements with which the engine begins to execute.
 */
#pragma once

#include "xslt/RunContext.h"
#include "xslt/Trace.h"

/**
 * xsl:template, xsl:variable or xsl:param. The engine executes the rule for the root, the functions
 * of the stylesheet and the content of global variables through these virtual functions, and all
 * that they need in a loop inside: a run that is traced has a loop of its own.
 */
template <typename Element>
class TracedElement : public Element {
public:
    using Element::Element;

    void execute(xalanc::StylesheetExecutionContext& context) const override {
        if (Trace* const trace = static_cast<RunContext&>(context).trace()) {
            trace->execute(*this, context, Trace::Role::Other);
        } else {
            Element::execute(context);
        }
    }
    void executeChildren(xalanc::StylesheetExecutionContext& context) const override {
        Trace* const trace = static_cast<RunContext&>(context).trace();
        if (!trace) {
            Element::executeChildren(context);
            return;
        }
        const xalanc::ElemTemplateElement* child = this->beginExecuteChildren(context);
        while (child) {
            trace->execute(*child, context, Trace::Role::Child);
            child = this->getNextChildElemToExecute(context, child);
        }
        this->endExecuteChildren(context);
    }
};
