/**
 * @file
 * Writes nodes as XML text.
 */
#pragma once

#include <iosfwd>

#include <xalanc/PlatformSupport/FormatterListener.hpp>
#include <xalanc/XalanDOM/XalanNode.hpp>

enum class XmlDeclaration { Written, LeftOut };

/** Reports a node and its subtree to a formatter. */
using Traversal = void (*)(const xalanc::XalanNode& node, xalanc::FormatterListener& formatter);

/** Attributes come in the reverse of their order. */
void traverseWithEngine(const xalanc::XalanNode& node, xalanc::FormatterListener& formatter);

/**
 * Writes a node and its subtree as XML text in the engine's default encoding, UTF-8, without
 * indentation.
 *
 * @param node null: only the XML declaration is written
 * @throws xalanc::XSLException if writing to the stream fails
 * @throws xercesc::SAXException for a character that XML does not allow
 */
void writeXml(std::ostream& os, const xalanc::XalanNode* node, XmlDeclaration declaration,
              Traversal traverse = traverseWithEngine);
