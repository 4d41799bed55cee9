/**
 * @file
 * A library that prints nothing.
 */
#pragma once

/** Checks from the first call on that nothing is printed on the three streams of C++. */
void requireSilence();
