/**
 * @file
 * `vexa-xslt xpath`: one expression over one document.
 */
#pragma once

#include "commands/Command.h"

extern const Command XPATH_COMMAND;
