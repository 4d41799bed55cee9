/**
 * @file
 * A process that reaches only the files that its command line names.
 */
#pragma once

#include "NamedFiles.h"

/**
 * Gives up, for good, all files but these: the named inputs and what is in their folders may be
 * read, and the output may be written, with the unfinished file beside it. Where the kernel can
 * also refuse connections, these too.
 *
 * @throws Failure if the kernel cannot do this
 */
void enterSandbox(const NamedFiles& files);
