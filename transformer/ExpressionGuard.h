/**
 * @file
 * Expressions that are too much for the engine.
 */
#pragma once

#include <string_view>

/**
 * Refuses an XPath expression that would overflow the stack: the engine goes one level deeper for
 * each nested bracket, and for each operator in a row of arithmetic operators or comparisons. The
 * limits are far above what people and programs write, and low enough for a thread with a stack of
 * 1 MiB.
 *
 * @throws an XSLException
 */
void refuseTooDeepExpression(std::u16string_view expression);
