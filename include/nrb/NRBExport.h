/**
 * @file
 * Marks what libNRBCore offers to other libraries; everything else stays hidden in it.
 */
#pragma once

#define NRB_EXPORT __attribute__((visibility("default")))

/** Keeps a private part of an exported class inside libNRBCore. */
#define NRB_LOCAL __attribute__((visibility("hidden")))
