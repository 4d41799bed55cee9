/**
 * @file
 * `vexa-xslt records`: one stylesheet over each record of a large document.
 */
#pragma once

#include "commands/Command.h"

extern const Command RECORDS_COMMAND;
