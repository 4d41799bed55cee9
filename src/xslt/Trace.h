/**
 * @file
 * The steps of a run, for the tracer of the host.
 */
#pragma once

#include "xslt/InstructionList.h"
#include "xslt/Operation.h"
#include "xslt/ValueExchange.h"

#include <vexa/xslt/Tracer.h>

#include <cstddef>
#include <vector>

#include <xalanc/XSLT/ElemTemplateElement.hpp>
#include <xalanc/XSLT/StylesheetExecutionContext.hpp>

namespace vexa {

struct Step::Data {
    const Instruction& instruction;
    std::size_t index;
    const xalanc::XalanNode* node;
    ValueExchange& values;
};

class StepAccess {
public:
    using Data = Step::Data;

    static Step make(const Data& data) { return Step(data); }
};

} // namespace vexa

/** Executes, and reports what begins and ends. */
class Trace {
public:
    using Context = xalanc::StylesheetExecutionContext;

    /** All must outlive the trace. */
    Trace(vexa::Tracer& tracer, const InstructionList& instructions, ValueExchange& values,
          Operation& operation)
        : m_tracer(tracer), m_instructions(instructions), m_values(values), m_operation(operation) {
    }
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    enum class Role {
        Child, ///< of the element that was entered last
        Other
    };
    /** Executes an element as the engine does. */
    void execute(const xalanc::ElemTemplateElement& element, Context& context, Role role);

    /** An element that the engine executes in another way begins. */
    void enter(const xalanc::ElemTemplateElement& element, const xalanc::XalanNode* node) {
        enter(element, node, false);
    }
    /** All that began since there were so many steps ends. */
    void leaveTo(std::size_t steps) noexcept;
    /** How many steps have begun and not ended. */
    std::size_t steps() const { return m_steps.size(); }

private:
    /** A step that has begun, or a text, which is none. */
    struct Begun {
        std::size_t index;
        const xalanc::ElemTemplateElement* element;
        const xalanc::XalanNode* node;
        /** It is an instruction that the engine has put a template in place of. */
        bool isReplaced;
    };

    void enter(const xalanc::ElemTemplateElement& element, const xalanc::XalanNode* node,
               bool isReplaced);
    void enterFromCaller(const xalanc::ElemTemplateElement& element, const xalanc::XalanNode* node);
    void executeEntered(const xalanc::ElemTemplateElement& first, Context& context);
    void leave() noexcept;
    vexa::StepAccess::Data dataOf(const Begun& step) const;

    vexa::Tracer& m_tracer;
    const InstructionList& m_instructions;
    ValueExchange& m_values;
    Operation& m_operation;
    std::vector<Begun> m_steps;
};
