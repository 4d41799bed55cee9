#include "xslt/InvalidExpression.h"

#include <algorithm>

InvalidExpression::InvalidExpression(xercesc::MemoryManager& memory)
    : m_namespace(NAMESPACE.data(), memory) {}

std::string InvalidExpression::callFor(std::string cause) {
    std::replace(cause.begin(), cause.end(), '"', '\'');
    return "invalid:expression(\"" + cause + "\")";
}
