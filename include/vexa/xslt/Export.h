/**
 * @file
 * Marks what libVEXA_XSLT offers to hosts; everything else stays hidden in it.
 */
#pragma once

#define VEXA_XSLT_EXPORT __attribute__((visibility("default")))

/** Keeps a private part of an exported class inside the library. */
#define VEXA_XSLT_LOCAL __attribute__((visibility("hidden")))
