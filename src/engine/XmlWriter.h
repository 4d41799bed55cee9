/**
 * @file
 * Nodes as XML text.
 */
#pragma once

#include <iosfwd>

#include <xalanc/XalanDOM/XalanNode.hpp>

enum class XmlDeclaration { Written, LeftOut };

/**
 * Writes a node and its subtree as XML text in the engine's default encoding (UTF-8), without
 * indentation.
 *
 * @param node null: only the declaration
 * @throws the engine's XSLException where the stream does not take the text, and a
 *         xercesc::SAXException for a character that XML cannot hold
 */
void writeXml(std::ostream& os, const xalanc::XalanNode* node, XmlDeclaration declaration);
