/**
 * @file
 * A processing engine of the library's own, for one operation over documents in memory.
 */
#pragma once

#include <nrb/I18NString.h>

#include <map>

#include <xalanc/XPath/XObjectFactoryDefault.hpp>
#include <xalanc/XPath/XPathFactoryDefault.hpp>
#include <xalanc/XSLT/XSLTEngineImpl.hpp>
#include <xalanc/XSLT/XSLTProcessorEnvSupportDefault.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDOMSupport.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeParserLiaison.hpp>

class TqXsltFunction;

/** Where the engine's objects take their memory from: the memory manager of whoever started Xerces.
 */
inline xercesc::MemoryManager& engineMemory() {
    return xalanc::XalanMemMgrs::getDefaultXercesMemMgr();
}

/** The environment of an engine, with the functions that stylesheets can call. */
class FunctionEnvironment : public xalanc::XSLTProcessorEnvSupportDefault {
public:
    using Functions = std::map<I18NString, TqXsltFunction*>;

    /**
     * An environment without a processor so far.
     *
     * @param functions is installed under the library's namespace, each as a clone, and beside them
     *                  the engine's nodeset under the engine's namespace; null: nothing is
     * installed
     */
    explicit FunctionEnvironment(const Functions* functions);

private:
    void install(const Functions& functions);
};

/**
 * All that one engine needs. The members are built from the first to the last, each on those before
 * it, and destroyed the other way round.
 */
class PrivateEngine {
public:
    /** @param functions what stylesheets can call; null: nothing */
    explicit PrivateEngine(const FunctionEnvironment::Functions* functions);
    PrivateEngine(const PrivateEngine&) = delete;
    PrivateEngine& operator=(const PrivateEngine&) = delete;

    xalanc::XalanSourceTreeDOMSupport domSupport;
    xalanc::XalanSourceTreeParserLiaison parserLiaison;
    FunctionEnvironment environment;
    xalanc::XObjectFactoryDefault objectFactory;
    xalanc::XPathFactoryDefault xpathFactory;
    xalanc::XSLTEngineImpl processor;
};
