/**
 * @file
 * Stylesheets, expressions and documents that cost more than a host has. Tests and benchmarks use
 * them with limits.
 */
#pragma once

#include <vexa/xslt/Options.h>

#include <string>
#include <vector>

struct HostileWork {
    const char* name;
    void (*run)(const vexa::Options&);
};

/** Work that does not end by itself within minutes. Most of it needs little memory. */
const std::vector<HostileWork>& endlessWork();

/** Work that needs ever more memory. */
const std::vector<HostileWork>& workThatFillsMemory();

std::string repeated(const std::string& text, int times);

/** A document of 1,000 empty elements "i". */
std::string manyItems();

/** A template on its second line that calls itself. */
std::string endlessRecursion();
