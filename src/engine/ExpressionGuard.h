/**
 * @file
 * Expressions that are too much for the engine.
 */
#pragma once

#include <string_view>

/**
 * Refuses an XPath expression that would overflow the stack. The engine goes deeper with each open
 * bracket, and with each further member of a row of steps, of operators, of "and" or of "or". What
 * all that takes at the deepest place is to fit into a thread with a stack of 1 MiB, which is far
 * more than people and programs write.
 *
 * @throws an XSLException
 */
void refuseTooDeepExpression(std::u16string_view expression);
