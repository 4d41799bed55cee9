/**
 * @file
 * Names and texts of nodes.
 */
#pragma once

#include <iosfwd>
#include <string>

#include <xalanc/XalanDOM/XalanNode.hpp>

/** The engine has namespace declarations as attributes. */
bool isNamespaceNode(const xalanc::XalanNode& node);

std::string nodeName(const xalanc::XalanNode& node);
std::string nodeLocalName(const xalanc::XalanNode& node);
std::string nodeNamespaceUri(const xalanc::XalanNode& node);
std::string nodeString(const xalanc::XalanNode& node);

/**
 * XML without a declaration; the value of an attribute or namespace node.
 *
 * @throws vexa::Error: Output for a character that XML 1.0 does not have
 */
std::string nodeXml(const xalanc::XalanNode& node);

/**
 * A node with its subtree as XML in UTF-8.
 *
 * @throws the engine's exceptions, or what the stream throws
 */
void writeNode(std::ostream& stream, const xalanc::XalanNode& node, bool declaration);
