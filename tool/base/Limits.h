/**
 * @file
 * What a run may take, and what it may reach.
 */
#pragma once

struct Limits {
    /** The most address space, in MiB; 0 for no limit. */
    unsigned maxMemory = 0;
    /** The longest time by the clock; 0 for no limit. */
    unsigned maxSeconds = 0;
    bool noNetwork = false;
    bool sandbox = false;

    /** Whether the work belongs into a process of its own, whose end can be told in words. */
    bool needChild() const { return maxMemory != 0 || maxSeconds != 0 || sandbox; }

    bool forbidNetwork() const { return noNetwork || sandbox; }
};
