/**
 * @file
 * Symbol visibility of libNRBCore. Only what is marked with NRB_EXPORT is exported.
 */
#pragma once

/** Exports a class or function of libNRBCore. */
#define NRB_EXPORT __attribute__((visibility("default")))

/** Hides a private part of an exported class. */
#define NRB_LOCAL __attribute__((visibility("hidden")))
