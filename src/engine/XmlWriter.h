/**
 * @file
 * Writes nodes as XML text.
 */
#pragma once

#include <iosfwd>

#include <xalanc/XalanDOM/XalanNode.hpp>

enum class XmlDeclaration { Written, LeftOut };

/**
 * Writes a node and its subtree as XML text in the engine's default encoding, UTF-8, without
 * indentation.
 *
 * @param node null: only the XML declaration is written
 * @throws xalanc::XSLException if writing to the stream fails
 * @throws xercesc::SAXException for a character that XML does not allow
 */
void writeXml(std::ostream& os, const xalanc::XalanNode* node, XmlDeclaration declaration);
