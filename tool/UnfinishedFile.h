/**
 * @file
 * The file that must not be left behind when the process ends early.
 */
#pragma once

#include <string>

/** Room for the name of a file. */
struct UnfinishedFileName {
    char text[4096];
};

/** From now on this file is removed if a signal ends the process; none if it is empty. */
void setUnfinishedFile(const std::string& path);

/** From now on the name goes to this place, and another process, which reads it there, removes. */
void leaveUnfinishedFileTo(UnfinishedFileName& place);

/** Removes the file, if there is one. May be called in a signal handler. */
void removeUnfinishedFile(const UnfinishedFileName& name);
