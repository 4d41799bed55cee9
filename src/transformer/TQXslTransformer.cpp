#include <vexa/TQXslTransformer.h>

#include <nrb/NRBThread.h>

#include <cstdint>

#include <xalanc/XalanTransformer/XalanTransformer.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace {

/** Initializations without a matching termination; negative after too many terminations. */
std::int32_t g_initializedCnt = 0;

/** Held during every call: a second thread returns only after the engines are initialized. */
NRBThreadCriticalSection g_cs_vexa_XslTransformer(1);

void initializeXerces() {
    xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr, nullptr,
                                          nullptr);
}

/** If Xalan fails, Xerces is terminated again: it counts, and a later call initializes both. */
void initializeXalan() {
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
        initializeXerces();
        initializeXalan();
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
