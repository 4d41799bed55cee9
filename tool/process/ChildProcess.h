/**
 * @file
 * Work in a process of its own, so that whatever it does can be told as an error.
 */
#pragma once

#include "Limits.h"

#include <string>
#include <sys/types.h>

struct CrashNotes;

/**
 * Returns in a child process, which has the limits of memory and time. The calling process stays
 * here, passes on signals, and exits as the child does. Where the child crashed or was stopped, it
 * tells that in one line and removes the unfinished output.
 *
 * To be called before there are other threads, and before anything is read or written.
 *
 * @param sourceName what the user calls the source, which is to blame
 * @throws Failure if there can be no child
 */
void goOnInChild(const Limits& limits, const std::string& sourceName);

/**
 * What a new child process does first: it takes the limits of memory, keeps notes of a crash, and
 * ends with its parent.
 */
void becomeChild(const Limits& limits, CrashNotes& notes, pid_t parent);

/** What to say of a child that did not end by itself. */
std::string endReason(int status, const CrashNotes& notes, const Limits& limits);

/** What to say of a child that was stopped at its limit of time. */
std::string lackOfTime(const Limits& limits);

/** What to say where memory is short. */
std::string lackOfMemory(const Limits& limits);
