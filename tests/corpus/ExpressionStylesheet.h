/**
 * @file
 * How an expression of the corpus becomes a stylesheet.
 */
#pragma once

#include <string>

/** Writes the string value of an expression; "p" and "q" are bound to "urn:p" and "urn:q". */
inline std::string stylesheetForExpression(const std::string& expression) {
    std::string select;
    for (const char c : expression) {
        select += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '"' ? "&quot;" : std::string(1, c);
    }
    return "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'"
           " xmlns:p='urn:p' xmlns:q='urn:q'><xsl:output method='text'/>"
           "<xsl:template match='/'><xsl:value-of select=\"" +
           select + "\"/></xsl:template></xsl:stylesheet>";
}
