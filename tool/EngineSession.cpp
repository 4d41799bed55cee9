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

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>

namespace {

/** What the engines made of a refused access or of a lack of memory is told by its cause. */
void tellCause(const Limits& limits, const std::string& sourceName) {
    tellRefusedNetwork();
    if (hasLackedMemory()) {
        throw Failure(sourceName, lackOfMemory(limits));
    }
}

[[noreturn]] void tellEngineReason(const Limits& limits, const std::string& sourceName,
                                   const std::string& type, const XMLCh* message) {
    tellCause(limits, sourceName);
    throw Failure(sourceName, type + I18NString(message, -1, nullptr, nullptr).c_str());
}

} // namespace

EngineSession::EngineSession() {
    TQXslTransformer_Initialize(nullptr);
}

EngineSession::~EngineSession() {
    TQXslTransformer_Terminate(nullptr);
}

void tellEngineExceptions(const Limits& limits, const std::string& sourceName,
                          const std::function<void()>& work) {
    try {
        work();
    } catch (const std::bad_alloc&) {
        throw Failure(sourceName, lackOfMemory(limits));
    } catch (const xercesc::OutOfMemoryException&) {
        throw Failure(sourceName, lackOfMemory(limits));
    } catch (const xercesc::DOMException& exception) { // an odd version in the XML declaration
        tellEngineReason(limits, sourceName, "", exception.getMessage());
    } catch (const xercesc::SAXException& exception) { // a character that XML cannot hold
        tellEngineReason(limits, sourceName, "SAXException: ", exception.getMessage());
    } catch (const std::exception&) {
        tellCause(limits, sourceName);
        throw;
    } catch (...) {
        tellCause(limits, sourceName);
        throw Failure(sourceName, "the engine gave up without a reason");
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

void setParameters(VEXAXslTransformer& transformer, const Parameters& parameters) {
    for (const auto& [name, value] : parameters) {
        transformer.setStylesheetParam(name, value);
    }
}

void runWithTransformer(const CommonOptions& options, const NamedFiles& files,
                        const std::string& phase,
                        const std::function<void(VEXAXslTransformer&)>& work) {
    const Parameters parameters = parseParameters(options.parameters);
    VEXAXslTransformer::m_bUseXercesDOM = options.useXercesDom;
    if (options.limits.needChild()) {
        goOnInChild(options.limits, files.sourceName);
    }

    Timing timing;
    {
        const EngineSession session;
        reachOnly(options.limits, files);
        timing.endPhase("start of the engines");
        tellEngineExceptions(options.limits, files.sourceName, [&] {
            VEXAXslTransformer transformer;
            setParameters(transformer, parameters);
            work(transformer);
        });
        timing.endPhase(phase);
    }
    timing.endPhase("stop of the engines");
    if (options.timing && !options.quiet) {
        std::cerr << timing.report();
    }
}
