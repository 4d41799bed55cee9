/**
 * @file
 * The results of one run beside the main one.
 */
#pragma once

#include "xslt/Operation.h"
#include "xslt/ResultAttributes.h"

#include <vexa/xslt/Transformation.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include <xalanc/XSLT/StylesheetExecutionContext.hpp>

/** Results that appear when the run has succeeded. They outlive the engine's run. */
class FurtherResults {
public:
    /**
     * All must outlive this object.
     *
     * @param handler may be empty: then nothing may be written
     * @param main    null where the main result is a document
     */
    FurtherResults(const vexa::DocumentHandler& handler, const vexa::Output* main,
                   Operation& operation);
    FurtherResults(const FurtherResults&) = delete;
    FurtherResults& operator=(const FurtherResults&) = delete;
    ~FurtherResults();

    /**
     * Begins a result within the one under way.
     *
     * @return takes its content, until its endDocument()
     * @throws vexa::Error: Denied, Output; what the handler throws
     */
    xalanc::FormatterListener& begin(const ResultAttributes& attributes,
                                     const vexa::Location& where,
                                     const xalanc::StylesheetExecutionContext& context);
    /** Ends the one that began last. @throws vexa::Error: Output */
    void end();

    /** Puts all results in their places. @throws vexa::Error: Output */
    void commit();

private:
    class Result;

    vexa::Output ask(const std::string& href, const vexa::DocumentSettings& settings,
                     const vexa::Location& where) const;

    const vexa::DocumentHandler& m_handler;
    Operation& m_operation;
    /** The files that are written. */
    std::set<std::string> m_uris;
    std::vector<std::unique_ptr<Result>> m_results;
    /** Those under way, the innermost last; the main one is first. */
    std::vector<std::string> m_bases;
    std::vector<Result*> m_open;
};
