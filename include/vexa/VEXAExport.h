/**
 * @file
 * Symbol visibility of the VEXA libraries. Only what is marked with VEXA_EXPORT is exported.
 */
#pragma once

/** Exports a class, function or variable. */
#define VEXA_EXPORT __attribute__((visibility("default")))

/** Hides a private part of an exported class. */
#define VEXA_LOCAL __attribute__((visibility("hidden")))
