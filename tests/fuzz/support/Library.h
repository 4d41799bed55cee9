/**
 * @file
 * The library as a fuzzer runs it.
 */
#pragma once

/**
 * Starts the library at the first call, and allots each input its memory. The engine then prints
 * nothing, and reaches no network.
 */
void beginInput();
