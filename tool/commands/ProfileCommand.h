/**
 * @file
 * `vexa-xslt profile`: where a transform spends its time.
 */
#pragma once

#include "commands/Command.h"

extern const Command PROFILE_COMMAND;
