/**
 * @file
 * What a parser asks and reports.
 */
#pragma once

#include "xslt/Sources.h"

#include <functional>
#include <string>
#include <utility>

#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>

/** Passes what a parser reports to the operation; a document that is not well-formed ends it. */
class ParserErrors : public xercesc::ErrorHandler {
public:
    explicit ParserErrors(Operation& operation) : m_operation(operation) {}

    void warning(const xercesc::SAXParseException& exception) override;
    void error(const xercesc::SAXParseException& exception) override;
    void fatalError(const xercesc::SAXParseException& exception) override;
    void resetErrors() override {}

private:
    void report(vexa::Severity severity, const xercesc::SAXParseException& exception);

    Operation& m_operation;
};

/** Opens the external entities of a document through the sources of the operation. */
class ExternalEntities : public xercesc::XMLEntityResolver {
public:
    /** Is given the URI of each entity that is read. */
    using Listener = std::function<void(const std::string& uri)>;

    ExternalEntities(Sources& sources, Listener onRead)
        : m_sources(sources), m_onRead(std::move(onRead)) {}

    xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* identifier) override;

private:
    Sources& m_sources;
    Listener m_onRead;
};
