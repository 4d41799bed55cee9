/**
 * @file
 * Expressions that are nested too deeply for the stack.
 */
#pragma once

#include <string_view>

/**
 * Whether an XPath expression would overflow the stack that the calling thread has left. The engine
 * recurses for each open bracket, and for each further member of a row of operators, of "and", of
 * "or" or of steps.
 */
bool isTooDeepExpression(std::u16string_view expression);

/** @throws an XSLException if isTooDeepExpression() */
void refuseTooDeepExpression(std::u16string_view expression);
