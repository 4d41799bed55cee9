/**
 * @file
 * What a process that may crash leaves to the one that watches it.
 */
#pragma once

#include "UnfinishedFile.h"

/** In memory that both processes share; the crashing one writes. */
struct CrashNotes {
    UnfinishedFileName unfinishedFile;
    /** The process was refused memory. */
    volatile bool lackedMemory;
    /** A fault of the memory was one of the stack. */
    volatile bool overflowedStack;
};

/** Room for notes, empty, that a child process shares. @throws std::system_error */
CrashNotes& shareCrashNotes();

/** Has this process keep the notes from now on, and say nothing else when it crashes. */
void keepCrashNotes(CrashNotes& notes);

/** Whether this process keeps notes and was refused memory. */
bool hasLackedMemory();
