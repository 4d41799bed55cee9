#include "EngineSession.h"

#include "Failure.h"
#include "Timing.h"

#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

#include <iostream>
#include <new>

#include <xercesc/util/OutOfMemoryException.hpp>

namespace {

/** The library, started for as long as this lives. */
class EngineSession {
public:
    EngineSession() { TQXslTransformer_Initialize(nullptr); }
    EngineSession(const EngineSession&) = delete;
    EngineSession& operator=(const EngineSession&) = delete;
    ~EngineSession() { TQXslTransformer_Terminate(nullptr); }
};

/** Neither of the exceptions for a lack of memory tells whose fault it was. */
void tellLackOfMemory(const std::string& sourceName, const std::function<void()>& work) {
    constexpr const char* REASON = "there is not enough memory";
    try {
        work();
    } catch (const std::bad_alloc&) {
        throw Failure(sourceName, REASON);
    } catch (const xercesc::OutOfMemoryException&) {
        throw Failure(sourceName, REASON);
    }
}

} // namespace

void runWithTransformer(const CommonOptions& options, const std::string& sourceName,
                        const std::string& phase,
                        const std::function<void(VEXAXslTransformer&)>& work) {
    const auto parameters = parseParameters(options.parameters);
    VEXAXslTransformer::m_bUseXercesDOM = options.useXercesDom;

    Timing timing;
    {
        const EngineSession session;
        timing.endPhase("start of the engines");
        VEXAXslTransformer transformer;
        for (const auto& [name, value] : parameters) {
            transformer.setStylesheetParam(name, value);
        }
        tellLackOfMemory(sourceName, [&] { work(transformer); });
        timing.endPhase(phase);
    }
    timing.endPhase("stop of the engines");
    if (options.timing && !options.quiet) {
        std::cerr << timing.report();
    }
}
