#include "xslt/EngineUse.h"

#include <vexa/TQXslTransformer.h>

#include <xalanc/XSLT/XSLTEngineImpl.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace {

bool areInitialized() {
    return xercesc::XMLPlatformUtils::fgMemoryManager &&
           !xalanc::XSLTEngineImpl::getXalanXSLNameSpaceURL().empty();
}

/** The calls of this library into the count that all users of the process share. */
class Initialization {
public:
    Initialization() {
        // A host that terminated more often than it initialized has left a count below zero.
        do {
            TQXslTransformer_Initialize(nullptr);
            ++m_calls;
        } while (!areInitialized());
    }
    Initialization(const Initialization&) = delete;
    Initialization& operator=(const Initialization&) = delete;
    ~Initialization() {
        for (; m_calls > 0; --m_calls) {
            TQXslTransformer_Terminate(nullptr);
        }
    }

private:
    int m_calls = 0;
};

} // namespace

EngineUse useEngines() {
    // Its own share is released when the library is unloaded, those of objects when they are gone.
    static const EngineUse engines = std::make_shared<Initialization>();
    return engines;
}
