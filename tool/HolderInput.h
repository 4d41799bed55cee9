/**
 * @file
 * A source as a document in memory.
 */
#pragma once

#include "Source.h"

#include <vexa/Dom2Dom.h>

#include <memory>

class VEXAXslTransformer;

/**
 * Parses the source.
 *
 * @param quiet print nothing that the engine prints by itself
 * @throws Failure if it cannot be read or parsed, WrongUsage for a URI that only the engine can
 * read
 */
std::unique_ptr<Dom2Dom> parseSource(VEXAXslTransformer& transformer, Source& source, bool quiet);
