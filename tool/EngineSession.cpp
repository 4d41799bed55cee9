#include "EngineSession.h"

#include "Failure.h"
#include "Timing.h"

#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

#include <iostream>
#include <new>

#include <xercesc/dom/DOMException.hpp>
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

/**
 * Makes failures of the engine's exceptions while it still runs: they use its memory, and must not
 * outlive it.
 */
void tellEngineExceptions(const std::string& sourceName, const std::function<void()>& work) {
    constexpr const char* LACK_OF_MEMORY = "there is not enough memory";
    try {
        work();
    } catch (const std::bad_alloc&) {
        throw Failure(sourceName, LACK_OF_MEMORY);
    } catch (const xercesc::OutOfMemoryException&) {
        throw Failure(sourceName, LACK_OF_MEMORY);
    } catch (const xercesc::DOMException& exception) { // an odd version in the XML declaration
        throw Failure(sourceName, I18NString(exception.getMessage(), -1, nullptr, nullptr).c_str());
    } catch (const std::exception&) {
        throw;
    } catch (...) {
        throw Failure(sourceName, "the engine gave up without a reason");
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
        tellEngineExceptions(sourceName, [&] { work(transformer); });
        timing.endPhase(phase);
    }
    timing.endPhase("stop of the engines");
    if (options.timing && !options.quiet) {
        std::cerr << timing.report();
    }
}
