/**
 * @file
 * Marks what the VEXA libraries offer to other code; everything else stays hidden in them.
 */
#pragma once

#define VEXA_EXPORT __attribute__((visibility("default")))

/** Keeps a private part of an exported class inside its library. */
#define VEXA_LOCAL __attribute__((visibility("hidden")))
