/**
 * @file
 * Trees as output events.
 */
#pragma once

#include <xalanc/PlatformSupport/FormatterListener.hpp>
#include <xalanc/XalanDOM/XalanNode.hpp>

/**
 * Reports a node and its subtree to a formatter, attributes in their order. The formatter can ask
 * for the namespaces of the element where it is. The declaration of "xml" is left out, which the
 * parser adds to each document. Of a root only the content is reported: begin and end are up to the
 * caller.
 */
void replayTree(const xalanc::XalanNode& node, xalanc::FormatterListener& formatter);
