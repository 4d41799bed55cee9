/**
 * @file
 * Inputs as the parser reads them.
 */
#pragma once

#include "xslt/Operation.h"

#include <vexa/xslt/Input.h>

#include <cstdint>
#include <memory>
#include <string>

#include <xercesc/sax/InputSource.hpp>

/** What a URI is wanted for: the access policy has rules for each. */
enum class Reference { Document, Module, ExternalEntity };

/** Opens inputs for one operation: asks its resolver, and holds to its access policy. */
class Sources {
public:
    explicit Sources(Operation& operation) : m_operation(operation) {}
    Sources(const Sources&) = delete;
    Sources& operator=(const Sources&) = delete;
    ~Sources();

    /** What the parser reads, with its real URI: the base of what it refers to. */
    struct Opened {
        std::unique_ptr<xercesc::InputSource> source;
        std::string uri;
    };

    /** What the parser reads for an input. @throws vexa::Error: Input, Denied, Usage */
    Opened open(const vexa::Input& input);

    /**
     * What the parser reads for a reference, which is absolute by now. What cannot be read is the
     * fault of the place that refers to it.
     * @param publicId of an external entity; empty where there is none
     * @throws vexa::Error: Input, Denied, Usage; what the resolver throws
     */
    Opened open(const std::string& uri, const std::string& base, Reference reference,
                const vexa::Location& place, const std::string& publicId = {});

    /** By the streams of all that was opened. */
    std::uint64_t bytesRead() const { return m_bytesRead; }

    class Stream;

private:
    Opened openReference(const std::string& uri, const std::string& base, Reference reference,
                         const std::string& publicId);
    Opened openOwn(const vexa::Input& input, const std::string& uri);
    Opened openUnderPolicy(const std::string& uri);

    Operation& m_operation;
    std::uint64_t m_bytesRead = 0;
    /** The first of a list of those that are not destroyed yet. */
    Stream* m_streams = nullptr;
};
