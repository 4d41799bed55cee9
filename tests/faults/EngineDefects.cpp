#include "EngineDefects.h"

#include <algorithm>
#include <string_view>

namespace {

bool beginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

bool isEngine(const std::string& call) {
    return beginsWith(call, "libxalan-c.so") || beginsWith(call, "libxerces-c-");
}

bool isOurs(const std::string& call) {
    return beginsWith(call, "libVEXA_") || beginsWith(call, "libNRBCore");
}

/** The memory manager that an engine object was given: who asks it is responsible. */
bool isPool(const std::string& call) {
    return isOurs(call) && call.find(" MemoryPool::") != std::string::npos;
}

/** Whether the innermost call of ours or of an engine is in an engine. */
bool isInEngine(const Calls& calls) {
    const auto responsible = std::find_if(calls.begin(), calls.end(), [](const auto& call) {
        return isEngine(call) || (isOurs(call) && !isPool(call));
    });
    return responsible != calls.end() && isEngine(*responsible);
}

bool hasNoNames(const Calls& calls) {
    return std::none_of(calls.begin(), calls.end(),
                        [](const auto& call) { return isEngine(call) || isOurs(call); });
}

bool areIn(const Calls& calls, const char* function) {
    return std::any_of(calls.begin(), calls.end(),
                       [&](const auto& call) { return call.find(function) != std::string::npos; });
}

/** An engine map that could not grow keeps an entry that it does not find again. */
bool isIncompleteEntry(const Outcome& outcome) {
    return areIn(outcome.failedIn, "::doCreateEntry(") &&
           areIn(outcome.failedIn, "XalanTransformer::setStylesheetParam(");
}

/** A failed start leaves incomplete constants in the engine, and the next start uses them. */
bool isIncompleteStart(const Outcome& outcome) {
    return areIn(outcome.failedIn, "XSLTInit::XSLTInit(") ||
           areIn(outcome.failedIn, "XMLPlatformUtils::Initialize(");
}

bool isKeptClone(const Calls& calls) {
    return areIn(calls, "VEXAXslTransformer::installExternalFunction(");
}

} // namespace

bool isDeathWithoutNames(const Outcome& outcome) {
    return outcome.problem == Problem::Death && hasNoNames(outcome.diedIn) &&
           hasNoNames(outcome.failedIn);
}

bool isEngineDefect(const Outcome& outcome) {
    switch (outcome.problem) {
    case Problem::Death:
        // A jump through an incomplete object leaves a stack without names.
        return isInEngine(hasNoNames(outcome.diedIn) ? outcome.failedIn : outcome.diedIn);
    case Problem::Loss:
        // If an allocation of ours had failed, freeing the engine's objects would be our task.
        return isInEngine(outcome.failedIn) &&
               std::all_of(outcome.lostIn.begin(), outcome.lostIn.end(), isInEngine);
    case Problem::WrongBehaviour:
        return isIncompleteEntry(outcome) || isIncompleteStart(outcome);
    case Problem::None:
        break;
    }
    return false;
}

void removeKeptClones(Outcome& outcome) {
    const auto kept = std::remove_if(outcome.lostIn.begin(), outcome.lostIn.end(), isKeptClone);
    outcome.lostIn.erase(kept, outcome.lostIn.end());
    if (outcome.problem == Problem::Loss && outcome.lostIn.empty()) {
        outcome.problem = Problem::None;
    }
}
