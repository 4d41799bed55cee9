/**
 * @file
 * Operations of the library, each held to what it promises whatever the input.
 */
#pragma once

#include <vexa/Dom2Dom.h>
#include <vexa/VEXAXslTransformer.h>

#include <string>

/** What a stream transform wrote. */
struct StreamResult {
    int code;
    std::string text;
};

/** A failure has a known code, and a reason. */
void checkResult(int code, const char* lastError);

/**
 * Transforms a text. What the engine throws here passes to the caller by contract, and is dropped:
 * the code is then -5.
 */
StreamResult transformStream(VEXAXslTransformer& transformer, const std::string& source,
                             const std::string& stylesheetFile);

/** Transforms in memory: no exception may pass. */
int transformInMemory(VEXAXslTransformer& transformer, Dom2Dom& in,
                      const std::string& stylesheetFile, Dom2Dom& out);

/** Queries: no exception may pass. */
int query(VEXAXslTransformer& transformer, Dom2Dom& holder, const I18NString& expression);

/** Writes a holder's document, whose text then ends as promised. */
std::string serialize(Dom2Dom& holder);

/** Parses a text into a holder without a role; whether there is a document now. */
bool parse(Dom2Dom& holder, const std::string& text);
