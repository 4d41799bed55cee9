/**
 * @file
 * A complete XSLT engine for one operation over in-memory documents.
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
 * An XSLT engine and its support objects. Each member depends on those declared before it: keep the
 * order.
 */
class PrivateEngine {
public:
    /** Prepares the environment before the engine is built, for example installs functions. */
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
