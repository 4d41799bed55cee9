/**
 * @file
 * `vexa-xslt chain`: stylesheet after stylesheet over one document, in memory.
 */
#pragma once

#include "commands/Command.h"

extern const Command CHAIN_COMMAND;
