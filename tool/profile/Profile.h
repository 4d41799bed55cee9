/**
 * @file
 * The profile of one transform, and the forms in which it is written.
 */
#pragma once

#include "files/FileNames.h"
#include "profile/Profiler.h"

#include <cstdint>
#include <string>
#include <vector>

struct Profile {
    /** "report.xsl over orders.xml" */
    std::string title;
    /** The error that ended the run; empty where it succeeded. */
    std::string outcome;
    /** What the steps of the command took, in nanoseconds. */
    std::uint64_t compile = 0;
    std::uint64_t parse = 0;
    std::uint64_t transform = 0;
    /** The stylesheet and what it includes, by URI. */
    std::vector<std::string> modules;

    const Profiler& data;
    const FileNames& names;

    /** The routines that were called, those that cost most first. */
    std::vector<std::size_t> routines() const;
    /** "match="item" mode="toc"", or "built-in rule for *" */
    std::string nameOf(std::size_t routine) const;
    std::string fileOf(const std::string& module) const;
    /** "report.xsl:12"; empty for a built-in rule. */
    std::string placeOf(std::size_t routine) const;
};

/** By routine, for people: a line each, those that cost most first. */
std::string profileTable(const Profile& profile);
/** One HTML page that needs nothing else. */
std::string profilePage(const Profile& profile);
/** What callgrind writes, for KCachegrind and callgrind_annotate. */
std::string callgrindFile(const Profile& profile);
/** "a;b;c NANOSECONDS" for each path of calls, for flame graphs. */
std::string foldedStacks(const Profile& profile);
