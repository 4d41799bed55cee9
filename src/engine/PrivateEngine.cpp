#include "engine/PrivateEngine.h"

namespace {

/** How many objects each block of a pool has. */
constexpr int STRINGS_IN_BLOCK = 10;
constexpr int NUMBERS_IN_BLOCK = 10;
constexpr int NODE_SETS_IN_BLOCK = 10;
constexpr int NODE_SET_PROXIES_IN_BLOCK = 5;

} // namespace

PrivateEngine::PreparedEnvironment::PreparedEnvironment(const Preparation& prepare)
    : XSLTProcessorEnvSupportDefault(engineMemory(), nullptr) {
    if (prepare) {
        prepare(*this);
    }
}

PrivateEngine::PrivateEngine(const Preparation& prepare)
    : parserLiaison(domSupport), environment(prepare),
      objectFactory(engineMemory(), STRINGS_IN_BLOCK, NUMBERS_IN_BLOCK, NODE_SETS_IN_BLOCK,
                    NODE_SET_PROXIES_IN_BLOCK),
      processor(engineMemory(), parserLiaison, environment, domSupport, objectFactory,
                xpathFactory) {
    environment.setProcessor(&processor);
}
