/**
 * @file
 * Problems that are caused by defects of the engines; docs/engine-faults.md describes them.
 */
#pragma once

#include "FailurePoint.h"

/** Whether the problem is in code of the engines only. */
bool isEngineDefect(const Outcome& outcome);

/** Whether the process died with a stack in which no function can be identified. */
bool isDeathWithoutNames(const Outcome& outcome);

/** Removes the losses that are documented: clones that installExternalFunction() never frees. */
void removeKeptClones(Outcome& outcome);
