/**
 * @file
 * How a document differs from what was expected.
 */
#pragma once

#include <vexa/xslt/Document.h>

#include <string>

/**
 * The first nodes that differ, a line each; empty where none does. Names are compared with their
 * namespaces and without prefixes, attributes in any order, texts with their white space; comments
 * and processing instructions count.
 */
std::string treeDifference(const vexa::Document& expected, const vexa::Document& actual);
