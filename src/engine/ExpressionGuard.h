/**
 * @file
 * What is nested too deeply for the stack.
 */
#pragma once

#include <cstddef>
#include <string_view>

/** Whether the calling thread's stack has so many bytes left, and a reserve. It may be slow. */
bool hasStackFor(std::size_t bytes);

/**
 * Whether an XPath expression would overflow the remaining stack of the calling thread. The engine
 * recurses for each open bracket, and for each operator and each step in a chain.
 */
bool isTooDeepExpression(std::u16string_view expression);

/** @throws xalanc::XSLException if isTooDeepExpression() */
void rejectTooDeepExpression(std::u16string_view expression);
