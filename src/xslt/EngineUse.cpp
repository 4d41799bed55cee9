#include "xslt/EngineUse.h"

#include <vexa/TQXslTransformer.h>
#include <vexa/xslt/Error.h>

#include <atomic>

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

std::atomic<bool> g_isShareReleased{false};

/** The library's own share, released when it is unloaded; those of objects when they are gone. */
struct LibraryShare {
    LibraryShare() = default;
    LibraryShare(const LibraryShare&) = delete;
    LibraryShare& operator=(const LibraryShare&) = delete;
    ~LibraryShare() { g_isShareReleased = true; }

    const EngineUse use = std::make_shared<Initialization>();
};

} // namespace

EngineUse useEngines() {
    // A destructor of a static object may still use the library as long as an object is left: the
    // engines cannot be initialized again while the process ends.
    if (g_isShareReleased) {
        if (!areInitialized()) {
            throw vexa::Error(vexa::ErrorKind::Usage, "the process is ending");
        }
        return std::make_shared<Initialization>();
    }
    static const LibraryShare share;
    return share.use;
}
