/**
 * @file
 * Documents from sources.
 */
#pragma once

#include "xslt/DocumentData.h"
#include "xslt/MemoryPool.h"
#include "xslt/Sources.h"

#include <memory>

#include <xalanc/XalanSourceTree/XalanSourceTreeParserLiaison.hpp>

/** Parses one document after the other; the parser inside is made once. */
class DocumentParser {
public:
    using DocumentPtr = vexa::DocumentAccess::Ptr;

    DocumentPtr parse(const vexa::Input& input, Operation& operation, Sources& sources);
    /** @param uri of the document, the base of what it refers to */
    DocumentPtr parse(const xercesc::InputSource& source, const std::string& uri,
                      Operation& operation, Sources& sources);

private:
    /** With memory of its own: what the parser loses is given back with it. */
    struct Parser {
        MemoryPool memory;
        xalanc::XalanSourceTreeParserLiaison liaison{memory};
        MemoryPool::CleanUp cleanUp{memory};
    };

    std::unique_ptr<Parser> m_parser;
};
