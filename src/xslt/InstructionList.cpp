#include "xslt/InstructionList.h"

#include "xslt/Operation.h"
#include "xslt/StylesheetFilter.h"
#include "xslt/Text.h"

#include <string>

#include <xalanc/XPath/XPath.hpp>
#include <xalanc/XSLT/ElemAttributeSet.hpp>
#include <xalanc/XSLT/ElemTemplate.hpp>
#include <xalanc/XSLT/StylesheetConstructionContext.hpp>

using Construction = xalanc::StylesheetConstructionContext;
using vexa::Instruction;

namespace {

/** name="x", with a space before it unless it is the first one. */
void addAttribute(std::string& text, const char* name, const std::string& value) {
    if (!value.empty()) {
        text += (text.empty() ? "" : " ") + std::string(name) + "=\"" + value + "\"";
    }
}

void describe(const xalanc::ElemTemplate& rule, Instruction& instruction) {
    const std::string name = toUtf8(rule.getNameAttribute().getLocalPart());
    const std::string suffix = toUtf8(StylesheetFilter::SUFFIX_OF_FUNCTIONS);
    if (name.size() > suffix.size() &&
        name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0) {
        instruction.kind = Instruction::Kind::Function;
        instruction.name = "func:function";
        instruction.title = name.substr(0, name.size() - suffix.size()) + "()";
        return;
    }
    instruction.kind = Instruction::Kind::Template;
    if (const xalanc::XPath* const pattern = rule.getMatchPattern()) {
        addAttribute(instruction.title, "match",
                     toUtf8(pattern->getExpression().getCurrentPattern()));
    }
    addAttribute(instruction.title, "name", name);
    addAttribute(instruction.title, "mode", toUtf8(rule.getMode().getLocalPart()));
}

Instruction describe(const xalanc::ElemTemplateElement& element) {
    Instruction instruction;
    instruction.name = toUtf8(element.getElementName());
    instruction.where = toLocation(element.getLocator());
    const bool isTopLevel = !element.getParentNodeElem();
    switch (element.getXSLToken()) {
    case Construction::ELEMNAME_TEMPLATE:
        describe(static_cast<const xalanc::ElemTemplate&>(element), instruction);
        break;
    case Construction::ELEMNAME_ATTRIBUTE_SET:
        instruction.kind = Instruction::Kind::AttributeSet;
        instruction.title =
            toUtf8(static_cast<const xalanc::ElemAttributeSet&>(element).getQName().getLocalPart());
        break;
    case Construction::ELEMNAME_VARIABLE:
    case Construction::ELEMNAME_PARAM:
        if (isTopLevel) {
            instruction.kind = Instruction::Kind::Variable;
            instruction.title = "$" + toUtf8(element.getNameAttribute().getLocalPart());
        }
        break;
    case Construction::ELEMNAME_LITERAL_RESULT:
        instruction.kind = Instruction::Kind::Element;
        break;
    default:
        break;
    }
    return instruction;
}

} // namespace

InstructionList::InstructionList(const std::vector<const xalanc::ElemTemplateElement*>& elements) {
    for (const auto* const element : elements) {
        if (element->getXSLToken() != Construction::ELEMNAME_DECIMAL_FORMAT) {
            m_indices.emplace(element, m_instructions.size());
            m_instructions.push_back(describe(*element));
        }
        const auto* const parent = element->getParentNodeElem();
        if (element->getXSLToken() == Construction::ELEMNAME_CALL_TEMPLATE && parent &&
            parent->getFirstChildElem()->getXSLToken() == Construction::ELEMNAME_TEMPLATE) {
            m_replaced.emplace(parent, element);
        }
    }
}
