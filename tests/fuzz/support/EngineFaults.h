/**
 * @file
 * Inputs that kill the engine from inside. The classic interface cannot catch that, so its fuzzers
 * do not try them: they look for faults of ours. README.md has a reproduction of each.
 */
#pragma once

#include <string_view>

/** Whether parsing this document is known to kill the engine. */
bool killsAsSource(std::string_view document);

/** Whether compiling or running this stylesheet is known to kill the engine. */
bool killsAsStylesheet(std::string_view document);

/** Whether evaluating this expression is known to kill the engine. */
bool killsAsExpression(std::string_view expression);
