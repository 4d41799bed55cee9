/**
 * @file
 * Marks what libNRBCore offers to other libraries; everything else stays hidden in it.
 */
#pragma once

#define NRB_EXPORT __attribute__((visibility("default")))
