/**
 * @file
 * `vexa-xslt worker`: transforms for programs that feed it.
 */
#pragma once

#include "commands/Command.h"

extern const Command WORKER_COMMAND;
