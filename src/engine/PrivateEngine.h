/**
 * @file
 * A processing engine of the library's own, for operations over documents in memory.
 */
#pragma once

#include "engine/EngineMemory.h"

#include <functional>

#include <xalanc/XPath/XObjectFactoryDefault.hpp>
#include <xalanc/XPath/XPathFactoryDefault.hpp>
#include <xalanc/XSLT/XSLTEngineImpl.hpp>
#include <xalanc/XSLT/XSLTProcessorEnvSupportDefault.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDOMSupport.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeParserLiaison.hpp>

/**
 * All that one engine needs. The members are built from the first to the last, each on those before
 * it, and destroyed in the reverse order.
 */
class PrivateEngine {
public:
    /** Prepares the environment before an engine is built on it: installs functions, say. */
    using Preparation = std::function<void(xalanc::XSLTProcessorEnvSupportDefault&)>;

    explicit PrivateEngine(const Preparation& prepare = nullptr);
    PrivateEngine(const PrivateEngine&) = delete;
    PrivateEngine& operator=(const PrivateEngine&) = delete;

    xalanc::XalanSourceTreeDOMSupport domSupport;
    xalanc::XalanSourceTreeParserLiaison parserLiaison;
    struct PreparedEnvironment : xalanc::XSLTProcessorEnvSupportDefault {
        explicit PreparedEnvironment(const Preparation& prepare);
    } environment;
    xalanc::XObjectFactoryDefault objectFactory;
    xalanc::XPathFactoryDefault xpathFactory;
    xalanc::XSLTEngineImpl processor;
};
