/**
 * @file
 * `vexa-xslt batch`: one stylesheet over many documents.
 */
#pragma once

#include "commands/Command.h"

extern const Command BATCH_COMMAND;
