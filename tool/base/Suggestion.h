/**
 * @file
 * What a mistyped name was probably meant to be.
 */
#pragma once

#include <string>
#include <vector>

/**
 * The name that is nearly equal to the mistyped one, the nearest if there are several; empty if
 * none is near. Near is a letter missing, added, changed or swapped with its neighbour for every
 * three letters before the extension, at most two, and any mistake of upper and lower case.
 */
std::string nearestName(const std::string& mistyped, const std::vector<std::string>& names);

/** The same; before that, the only name of which the first three or more letters were typed. */
std::string nearestWord(const std::string& mistyped, const std::vector<std::string>& names);

/** How an error goes on with a suggestion: nothing for an empty name. */
std::string didYouMean(const std::string& name);
