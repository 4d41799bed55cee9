/**
 * @file
 * Marks what libVEXA_XSLT offers to hosts; everything else stays hidden in it.
 */
#pragma once

#define VEXA_XSLT_EXPORT __attribute__((visibility("default")))
