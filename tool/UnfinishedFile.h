/**
 * @file
 * The files that must not be left behind when the process ends early.
 */
#pragma once

#include <cstddef>
#include <mutex>
#include <string>

/** Room for the name of a file. */
struct UnfinishedFileName {
    char text[4096];
};

/** What the names of such files begin with. */
constexpr const char* UNFINISHED_FILE_NAME = ".vexa-xslt-";

/** How many threads of a process may have an unfinished file, one each. */
constexpr std::size_t MOST_WRITING_THREADS = 257;

/**
 * From now on this file of the calling thread is removed if a signal ends the process; none if it
 * is empty.
 */
void setUnfinishedFile(const std::string& path);

/**
 * From now on the name of this thread's file goes to this place, and another process, which reads
 * it there, removes.
 */
void leaveUnfinishedFileTo(UnfinishedFileName& place);

/** Removes the file, if it is there and one of ours. May be called in a signal handler. */
void removeUnfinishedFile(const UnfinishedFileName& name);

/**
 * To be held while a file is made, and while it is put in its place: otherwise a thread could do
 * either after the files of all threads have been removed.
 */
std::unique_lock<std::mutex> lockUnfinishedFiles();

/**
 * Removes the files of all threads, before the process ends: no thread can open a file from now on.
 * Not to be called in a signal handler.
 */
void removeUnfinishedFiles(const std::unique_lock<std::mutex>& lock);
