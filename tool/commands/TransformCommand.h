/**
 * @file
 * `vexa-xslt transform`: one stylesheet over one document.
 */
#pragma once

#include "commands/Command.h"

extern const Command TRANSFORM_COMMAND;
