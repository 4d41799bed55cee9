#include "engine/PrivateEngine.h"

PrivateEngine::PreparedEnvironment::PreparedEnvironment(const Preparation& prepare)
    : XSLTProcessorEnvSupportDefault(engineMemory(), nullptr) {
    if (prepare) {
        prepare(*this);
    }
}

PrivateEngine::PrivateEngine(const Preparation& prepare)
    : parserLiaison(domSupport), environment(prepare), objectFactory(engineMemory(), 10, 10, 10, 5),
      processor(engineMemory(), parserLiaison, environment, domSupport, objectFactory,
                xpathFactory) {
    environment.setProcessor(&processor);
}
