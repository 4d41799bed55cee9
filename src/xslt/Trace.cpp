#include "xslt/Trace.h"

#include <xalanc/XSLT/StylesheetConstructionContext.hpp>

using Construction = xalanc::StylesheetConstructionContext;
using xalanc::ElemTemplateElement;

namespace vexa {

Tracer::~Tracer() = default;

Step::Step(const Data& data) noexcept : m_data(data) {}

const Instruction& Step::instruction() const noexcept {
    return m_data.instruction;
}

std::size_t Step::index() const noexcept {
    return m_data.index;
}

Node Step::node() const {
    return m_data.node ? m_data.values.toHost(*m_data.node) : Node();
}

} // namespace vexa

void Trace::execute(const ElemTemplateElement& element, Context& context, Role role) {
    const std::size_t before = steps();
    try {
        if (role == Role::Child) {
            enterFromCaller(element, context.getCurrentNode());
        } else {
            enter(element, context.getCurrentNode());
        }
        executeEntered(element, context);
        leaveTo(before);
    } catch (...) {
        leaveTo(before);
        throw;
    }
}

/** The engine's loop, with reports. */
void Trace::executeEntered(const ElemTemplateElement& first, Context& context) {
    const ElemTemplateElement* const begin = first.getParentNodeElem();
    context.pushInvoker(begin);
    const ElemTemplateElement* current = &first;
    while (true) {
        const ElemTemplateElement* next = current->startElement(context);
        while (!next) {
            current->endElement(context);
            leave();
            const ElemTemplateElement* const caller = current->getInvoker(context);
            if (caller == begin) {
                context.popInvoker();
                return;
            }
            next = caller->getNextChildElemToExecute(context, current);
            if (!next) {
                current = caller;
            }
        }
        enterFromCaller(*next, context.getCurrentNode());
        current = next;
    }
}

void Trace::enterFromCaller(const ElemTemplateElement& element, const xalanc::XalanNode* node) {
    if (element.getXSLToken() == Construction::ELEMNAME_TEMPLATE) {
        if (const auto* const call = m_instructions.replacedIn(*m_steps.back().element)) {
            enter(*call, node, true);
        }
    }
    enter(element, node);
}

void Trace::enter(const ElemTemplateElement& element, const xalanc::XalanNode* node,
                  bool isReplaced) {
    m_steps.push_back({m_instructions.indexOf(element), &element, node, isReplaced});
    if (m_steps.back().index == InstructionList::NONE) {
        return;
    }
    try {
        m_operation.keepingException([&] {
            const auto data = dataOf(m_steps.back());
            m_tracer.enter(vexa::StepAccess::make(data));
        });
    } catch (...) {
        m_steps.pop_back(); // the host does not know of it
        throw;
    }
}

void Trace::leave() noexcept {
    do {
        if (m_steps.back().index != InstructionList::NONE) {
            const auto data = dataOf(m_steps.back());
            m_tracer.leave(vexa::StepAccess::make(data));
        }
        m_steps.pop_back();
    } while (!m_steps.empty() && m_steps.back().isReplaced);
}

void Trace::leaveTo(std::size_t steps) noexcept {
    while (m_steps.size() > steps) {
        leave();
    }
}

vexa::StepAccess::Data Trace::dataOf(const Begun& step) const {
    return {m_instructions.all()[step.index], step.index, step.node, m_values};
}
