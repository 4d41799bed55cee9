#include "PrivateEngine.h"

#include <vexa/TqXsltFunction.h>
#include <vexa/VEXAConfig.h>

#include "EngineStrings.h"

#include <xalanc/XalanExtensions/FunctionNodeSet.hpp>

using xalanc::XalanDOMString;

FunctionEnvironment::FunctionEnvironment(const Functions* functions)
    : XSLTProcessorEnvSupportDefault(engineMemory(), nullptr) {
    if (functions) {
        install(*functions);
    }
}

void FunctionEnvironment::install(const Functions& functions) {
    installExternalFunctionLocal(xalanc::XSLTEngineImpl::getXalanXSLNameSpaceURL(),
                                 XalanDOMString(u"nodeset"), xalanc::FunctionNodeSet(true));
    const XalanDOMString extensionNamespace(u"" VEXA_XSL_EXTENSION_NAMESPACE);
    for (const auto& [name, function] : functions) {
        installExternalFunctionLocal(extensionNamespace, toEngineString(name), *function);
    }
}

PrivateEngine::PrivateEngine(const FunctionEnvironment::Functions* functions)
    : parserLiaison(domSupport), environment(functions),
      objectFactory(engineMemory(), 10, 10, 10, 5),
      processor(engineMemory(), parserLiaison, environment, domSupport, objectFactory,
                xpathFactory) {
    environment.setProcessor(&processor);
}
