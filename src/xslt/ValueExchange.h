/**
 * @file
 * Values of the host as objects of the engine, and back.
 */
#pragma once

#include "xslt/Environment.h"

#include <vexa/xslt/Value.h>

#include <map>
#include <string>

#include <xalanc/XPath/XObject.hpp>
#include <xalanc/XPath/XPathExecutionContext.hpp>

/**
 * Exchanges values during one run. Nodes that the run does not share with the host are copied for
 * it, each tree once, and so live on when the run has ended.
 */
class ValueExchange {
public:
    explicit ValueExchange(Environment& environment) : m_environment(environment) {}

    /** Forgets the copies of the last run. */
    void reset() { m_copies.clear(); }
    /** Another fragment may be where this one was. */
    void forget(const xalanc::XalanNode& fragment) { m_copies.erase(&fragment); }

    xalanc::XObjectPtr toEngine(const vexa::Value& value, xalanc::XPathExecutionContext& context);
    vexa::Value toHost(const xalanc::XObject& object, xalanc::XPathExecutionContext& context);
    vexa::Node toHost(const xalanc::XalanNode& node);

private:
    Environment& m_environment;
    std::map<const xalanc::XalanNode*, vexa::DocumentAccess::Ptr> m_copies;
};

/** A string for the engine. @throws vexa::Error: Usage for one with U+0000 */
void refuseNul(const std::string& text);
