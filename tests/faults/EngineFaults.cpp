#include "EngineFaults.h"

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

/** Of the two that call each other, the one that was at work. */
bool isInEngine(const Calls& calls) {
    const auto responsible = std::find_if(calls.begin(), calls.end(), [](const auto& call) {
        return isEngine(call) || isOurs(call);
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

/** A map of the engine that could not grow keeps an entry that it does not find again. */
bool isHalfAnEntry(const Outcome& outcome) {
    return areIn(outcome.failedIn, "::doCreateEntry(") &&
           areIn(outcome.failedIn, "XalanTransformer::setStylesheetParam(");
}

/** A start that failed half way leaves the engine's constants half made, for the next one too. */
bool isHalfAStart(const Outcome& outcome) {
    return areIn(outcome.failedIn, "XSLTInit::XSLTInit(") ||
           areIn(outcome.failedIn, "XMLPlatformUtils::Initialize(");
}

bool isKeptClone(const Calls& calls) {
    return areIn(calls, "VEXAXslTransformer::installExternalFunction(");
}

} // namespace

bool isADeathWithoutNames(const Outcome& outcome) {
    return outcome.trouble == Trouble::Death && hasNoNames(outcome.diedIn) &&
           hasNoNames(outcome.failedIn);
}

bool isTheEngines(const Outcome& outcome) {
    switch (outcome.trouble) {
    case Trouble::Death:
        // A jump through a half made object leaves a stack without names.
        return isInEngine(hasNoNames(outcome.diedIn) ? outcome.failedIn : outcome.diedIn);
    case Trouble::Loss:
        // Had an allocation of ours failed, the engine's objects would have been ours to give back.
        return isInEngine(outcome.failedIn) &&
               std::all_of(outcome.lostIn.begin(), outcome.lostIn.end(), isInEngine);
    case Trouble::WrongBehaviour:
        return isHalfAnEntry(outcome) || isHalfAStart(outcome);
    case Trouble::None:
        break;
    }
    return false;
}

void forgetKeptClones(Outcome& outcome) {
    const auto kept = std::remove_if(outcome.lostIn.begin(), outcome.lostIn.end(), isKeptClone);
    outcome.lostIn.erase(kept, outcome.lostIn.end());
    if (outcome.trouble == Trouble::Loss && outcome.lostIn.empty()) {
        outcome.trouble = Trouble::None;
    }
}
