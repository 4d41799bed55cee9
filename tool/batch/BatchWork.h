/**
 * @file
 * What a worker does.
 */
#pragma once

#include "BatchPlan.h"
#include "Channel.h"

/** Does job after job, until there are no more or the process is not to be trusted any longer. */
void doJobs(const Batch& batch, const WorkerChannel& channel);
