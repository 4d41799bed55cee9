/**
 * @file
 * Whether a trouble is one of the engines' own; docs/engine-faults.md tells of these.
 */
#pragma once

#include "FailurePoint.h"

/** Whether the engines caused it all by themselves. */
bool isTheEngines(const Outcome& outcome);

/** Whether the process died with a stack from which nothing can be read. */
bool isADeathWithoutNames(const Outcome& outcome);

/** Leaves out the losses that are promised: clones that installExternalFunction keeps for good. */
void forgetKeptClones(Outcome& outcome);
