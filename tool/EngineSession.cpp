#include "EngineSession.h"

#include "Timing.h"

#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

#include <iostream>

namespace {

/** The library, started for as long as this lives. */
class EngineSession {
public:
    EngineSession() { TQXslTransformer_Initialize(nullptr); }
    EngineSession(const EngineSession&) = delete;
    EngineSession& operator=(const EngineSession&) = delete;
    ~EngineSession() { TQXslTransformer_Terminate(nullptr); }
};

} // namespace

void runWithTransformer(const CommonOptions& options, const std::string& phase,
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
        work(transformer);
        timing.endPhase(phase);
    }
    timing.endPhase("stop of the engines");
    if (options.timing && !options.quiet) {
        std::cerr << timing.report();
    }
}
