/**
 * @file
 * What a parser asks and reports.
 */
#pragma once

#include "xslt/Sources.h"

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
    Operation& m_operation;
};

/** Opens the external entities of a document through the sources of the operation. */
class ExternalEntities : public xercesc::XMLEntityResolver {
public:
    explicit ExternalEntities(Sources& sources) : m_sources(sources) {}

    xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* identifier) override;

private:
    Sources& m_sources;
};
