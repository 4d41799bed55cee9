/**
 * @file
 * Stylesheet modules from sources.
 */
#pragma once

#include "xslt/ParserCallbacks.h"
#include "xslt/Sources.h"

#include <xercesc/sax/DocumentHandler.hpp>
#include <xercesc/sax/InputSource.hpp>

/**
 * Parses a stylesheet or module into a handler. The locator that the handler is given stands where
 * the element, text or instruction begins; the parser's own stands after it.
 *
 * @param onEntity is given the URI of each external entity that is read
 */
void parseModule(const xercesc::InputSource& source, xercesc::DocumentHandler& handler,
                 Operation& operation, Sources& sources, ExternalEntities::Listener onEntity);
