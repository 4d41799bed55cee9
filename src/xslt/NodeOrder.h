/**
 * @file
 * Node-sets in document order.
 */
#pragma once

#include <vexa/xslt/Document.h>

#include <vector>

/** Sorted, each node once; documents follow one another in an order of no meaning. */
std::vector<vexa::Node> inDocumentOrder(std::vector<vexa::Node> nodes);
