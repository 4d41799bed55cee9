#include "EngineSession.h"

#include "ChildProcess.h"
#include "CrashNotes.h"
#include "Failure.h"
#include "NoNetwork.h"
#include "Sandbox.h"
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

/** Whatever the engines made of it, a lack of memory and a refusal are told as such. */
void tellLimits(const Limits& limits, const std::string& sourceName,
                const std::function<void()>& work) {
    try {
        work();
    } catch (const std::bad_alloc&) {
        throw Failure(sourceName, lackOfMemory(limits));
    } catch (const xercesc::OutOfMemoryException&) {
        throw Failure(sourceName, lackOfMemory(limits));
    } catch (...) {
        tellRefusedNetwork();
        if (hasLackedMemory()) {
            throw Failure(sourceName, lackOfMemory(limits));
        }
        throw;
    }
}

void reachOnly(const Limits& limits, const NamedFiles& files) {
    if (limits.forbidNetwork()) {
        forbidNetwork();
    }
    if (limits.sandbox) {
        enterSandbox(files);
    }
}

} // namespace

void runWithTransformer(const CommonOptions& options, const NamedFiles& files,
                        const std::string& phase,
                        const std::function<void(VEXAXslTransformer&)>& work) {
    const auto parameters = parseParameters(options.parameters);
    VEXAXslTransformer::m_bUseXercesDOM = options.useXercesDom;
    if (options.limits.needChild()) {
        goOnInChild(options.limits, files.sourceName);
    }

    Timing timing;
    {
        const EngineSession session;
        reachOnly(options.limits, files);
        timing.endPhase("start of the engines");
        VEXAXslTransformer transformer;
        for (const auto& [name, value] : parameters) {
            transformer.setStylesheetParam(name, value);
        }
        tellLimits(options.limits, files.sourceName, [&] { work(transformer); });
        timing.endPhase(phase);
    }
    timing.endPhase("stop of the engines");
    if (options.timing && !options.quiet) {
        std::cerr << timing.report();
    }
}
