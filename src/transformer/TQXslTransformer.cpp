#include <vexa/TQXslTransformer.h>

#include <nrb/NRBThread.h>

#include <cstdint>

#include <xalanc/XalanTransformer/XalanTransformer.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace {

/** Starts not yet matched by a stop; negative after more stops than starts. */
std::int32_t g_initializedCnt = 0;

/** Held through every start and stop, so that a second starter finds the engines fully up. */
NRBThreadCriticalSection g_cs_vexa_XslTransformer(1);

void startXerces() {
    xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr, nullptr,
                                          nullptr);
}

/** Xerces counts its starts: one whose Xalan did not come up is taken back, so that a retry adds
 * up. */
void startXalanOrStopXerces() {
    try {
        xalanc::XalanTransformer::initialize();
    } catch (...) {
        xercesc::XMLPlatformUtils::Terminate();
        throw;
    }
}

} // namespace

int TQXslTransformer_Initialize(const char* /*ignored*/) {
    const NRBThreadGuard guard(g_cs_vexa_XslTransformer);
    if (g_initializedCnt == 0) {
        startXerces();
        startXalanOrStopXerces();
    }
    ++g_initializedCnt;
    return 0;
}

int TQXslTransformer_Terminate(const char* /*ignored*/) {
    const NRBThreadGuard guard(g_cs_vexa_XslTransformer);
    if (g_initializedCnt == 1) {
        xalanc::XalanTransformer::terminate();
        xercesc::XMLPlatformUtils::Terminate();
    }
    --g_initializedCnt;
    return 0;
}
