/**
 * @file
 * Marks what the VEXA libraries offer to other code; everything else stays hidden in them.
 */
#pragma once

#define VEXA_EXPORT __attribute__((visibility("default")))
