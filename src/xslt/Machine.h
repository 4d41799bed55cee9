/**
 * @file
 * The engine of one Transformation.
 */
#pragma once

#include "xslt/ConstructionContext.h"
#include "xslt/DocumentParser.h"
#include "xslt/Environment.h"
#include "xslt/FurtherResults.h"
#include "xslt/MemoryPool.h"
#include "xslt/OperationProblems.h"
#include "xslt/ResultFragments.h"
#include "xslt/StylesheetData.h"
#include "xslt/Trace.h"
#include "xslt/ValueExchange.h"

#include "engine/IcuNumberFormat.h"

#include <vexa/xslt/Transformation.h>

#include <map>
#include <optional>
#include <string>
#include <utility>

#include <xalanc/XPath/XObjectFactoryDefault.hpp>
#include <xalanc/XPath/XPathFactoryDefault.hpp>
#include <xalanc/XSLT/StylesheetExecutionContextDefault.hpp>
#include <xalanc/XSLT/XSLTEngineImpl.hpp>
#include <xalanc/XSLT/XSLTResultTarget.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeParserLiaison.hpp>

/** A name with its namespace. */
using ExpandedName = std::pair<std::string, std::string>; // URI, local name

/** What a host has set for the runs of a Transformation. */
struct RunSettings {
    std::map<ExpandedName, vexa::Value> parameters;
    std::map<ExpandedName, vexa::Function> functions;
    vexa::Tracer* tracer = nullptr;
};

/**
 * An engine that runs one stylesheet again and again: it is set back between runs instead of built
 * anew. After a failure it is thrown away with its memory, and so is what the engine has lost.
 */
class Machine {
public:
    /** All must outlive the machine. */
    Machine(const vexa::StylesheetAccess::Data& stylesheet, const RunSettings& settings,
            DocumentParser& parser);
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;
    ~Machine();

    void run(const vexa::DocumentAccess::Ptr& source, xalanc::XSLTResultTarget& target,
             FurtherResults& furtherResults, Operation& operation, Sources& sources);

private:
    class Context;
    class TracedContext;
    class HostFunction;

    void installFunctions(const RunSettings& settings);

    const RunSettings& m_settings;
    const vexa::StylesheetAccess::Data& m_stylesheet;
    MemoryPool m_memory;
    TreeSupport m_trees;
    xalanc::XalanSourceTreeParserLiaison m_liaison;
    Environment m_environment;
    ValueExchange m_values;
    /** Outlives the values, which are fragments too. */
    ResultFragments m_fragments;
    xalanc::XObjectFactoryDefault m_objects;
    /** Has the names in the patterns that the factory holds. */
    ConstructionContext m_construction;
    xalanc::XPathFactoryDefault m_xpaths;
    xalanc::XSLTEngineImpl m_processor;
    IcuNumberFormat m_numberFormat;
    std::unique_ptr<Context> m_context;
    MemoryPool::CleanUp m_cleanUp{m_memory};
    /** Of the run under way. */
    OperationProblems* m_problems = nullptr;
    FurtherResults* m_furtherResults = nullptr;
    std::optional<Trace> m_trace;
};
