/**
 * @file
 * `vexa-xslt test`: tests of stylesheets.
 */
#pragma once

#include "commands/Command.h"

extern const Command TEST_COMMAND;
