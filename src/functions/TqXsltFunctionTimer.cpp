#include "functions/TqXsltFunctionTimer.h"

#include "functions/FunctionCall.h"
#include "functions/NarrowText.h"

#include <nrb/NRBUtSystemInfo.h>

#include <cstdio>

using xalanc::XObjectPtr;

std::map<int, timeStopwatch> gmapTimers;

int gnIndexTimerID = 0;

namespace {

using Worker = I18NString (*)(const I18NString& id);

/** Calls a function that has the number of a timer as its only argument. */
XObjectPtr callWithTimerId(const FunctionCall& call, const char* arityMessage, int assertionLine,
                           Worker worker) {
    call.expectArguments(1, arityMessage);
    call.assertFirstArgument({"TqXsltFunctionTimer", assertionLine});
    return call.result(worker(call.argument(0)));
}

/** Returns a timer; an unknown number creates a stopped timer at zero. */
timeStopwatch& findTimer(const I18NString& id) {
    return gmapTimers[parseNumber(id)];
}

double totalSeconds(const timeStopwatch& timer) {
    return timer.ulStart == 0 ? timer.dTotal
                              : MyTimeElapsed(MyCurrentTime(), timer.ulStart) + timer.dTotal;
}

I18NString formatNumber(int number) {
    char text[128] = {};
    std::snprintf(text, sizeof text, "%d", number);
    return I18NString(text, I18NGetPlatformDefaultEncoding());
}

I18NString formatSeconds(double seconds) {
    char text[128] = {};
    std::snprintf(text, sizeof text, "%8.3f", seconds);
    return I18NString(text, I18NGetPlatformDefaultEncoding());
}

} // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the signature is fixed
std::uint32_t MyConvertTimeString(I18NString stamp) {
    constexpr std::uint32_t MSEC_SEC = 1000;
    constexpr std::uint32_t MSEC_MIN = 60 * MSEC_SEC;
    constexpr std::uint32_t MSEC_HOUR = 60 * MSEC_MIN;
    constexpr std::uint32_t MSEC_DAY = 24 * MSEC_HOUR;

    unsigned year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, millisecond = 0;
    std::sscanf(stamp.c_str(), "%4u%2u%2u%2u%2u%2u%3u", &year, &month, &day, &hour, &minute,
                &second, &millisecond);
    return day * MSEC_DAY + hour * MSEC_HOUR + minute * MSEC_MIN + second * MSEC_SEC + millisecond;
}

std::uint32_t MyCurrentTime() {
    return MyConvertTimeString(I18NString(NRBUtSystemInfo::getTimeStamp(0).c_str()));
}

double MyTimeElapsed(std::uint32_t from, std::uint32_t to) {
    const long double milliseconds = static_cast<long double>(from) - static_cast<long double>(to);
    return static_cast<double>(milliseconds / 1000.0L);
}

// ---- TimerCreate ----

XObjectPtr FunctionTimerCreate::execute(xalanc::XPathExecutionContext& executionContext,
                                        xalanc::XalanNode* context,
                                        const XObjectArgVectorType& args,
                                        const xalanc::Locator* /*locator*/) const {
    const FunctionCall call(executionContext, context, args);
    call.expectArguments(0, "The TimerCreate() function takes no arguments!");
    return call.result(TimerCreate());
}

I18NString FunctionTimerCreate::TimerCreate() {
    ++gnIndexTimerID;
    I18NString id = formatNumber(gnIndexTimerID);
    // A stylesheet may have used this number without TimerCreate.
    gmapTimers[gnIndexTimerID] = timeStopwatch();
    return id;
}

// ---- TimerStart ----

XObjectPtr FunctionTimerStart::execute(xalanc::XPathExecutionContext& executionContext,
                                       xalanc::XalanNode* context, const XObjectArgVectorType& args,
                                       const xalanc::Locator* /*locator*/) const {
    return callWithTimerId(FunctionCall(executionContext, context, args),
                           "tqfunc:TimerStart() function takes 1 argument!", 152, TimerStart);
}

I18NString FunctionTimerStart::TimerStart(const I18NString& id) {
    const std::uint32_t now = MyCurrentTime();
    // Discards an interval that has not ended: only finished intervals count.
    findTimer(id).ulStart = now;
    // Negative late in a month, when the highest bit of the count is set: this is guaranteed.
    return formatNumber(static_cast<std::int32_t>(now));
}

// ---- TimerStop ----

XObjectPtr FunctionTimerStop::execute(xalanc::XPathExecutionContext& executionContext,
                                      xalanc::XalanNode* context, const XObjectArgVectorType& args,
                                      const xalanc::Locator* /*locator*/) const {
    return callWithTimerId(FunctionCall(executionContext, context, args),
                           "The TimerStop() function takes 1 argument!", 218, TimerStop);
}

I18NString FunctionTimerStop::TimerStop(const I18NString& id) {
    const std::uint32_t now = MyCurrentTime();
    timeStopwatch& timer = findTimer(id);
    // For a stopped timer, ulStart is 0: the interval begins at the start of the count.
    const double interval = MyTimeElapsed(now, timer.ulStart);
    timer.ulStart = 0;
    timer.dTotal += interval;
    return formatSeconds(interval);
}

// ---- TimerTotal ----

XObjectPtr FunctionTimerTotal::execute(xalanc::XPathExecutionContext& executionContext,
                                       xalanc::XalanNode* context, const XObjectArgVectorType& args,
                                       const xalanc::Locator* /*locator*/) const {
    return callWithTimerId(FunctionCall(executionContext, context, args),
                           "The TimerTotal() function takes 1 argument!", 287, TimerTotal);
}

I18NString FunctionTimerTotal::TimerTotal(const I18NString& id) {
    return formatSeconds(totalSeconds(findTimer(id)));
}

// ---- TimerReset ----

XObjectPtr FunctionTimerReset::execute(xalanc::XPathExecutionContext& executionContext,
                                       xalanc::XalanNode* context, const XObjectArgVectorType& args,
                                       const xalanc::Locator* /*locator*/) const {
    return callWithTimerId(FunctionCall(executionContext, context, args),
                           "The TimerReset() function takes 1 argument!", 364, TimerReset);
}

I18NString FunctionTimerReset::TimerReset(const I18NString& id) {
    timeStopwatch& timer = findTimer(id);
    const double total = totalSeconds(timer);
    timer = timeStopwatch();
    return formatSeconds(total);
}

// ---- TimerDestroy ----

XObjectPtr FunctionTimerDestroy::execute(xalanc::XPathExecutionContext& executionContext,
                                         xalanc::XalanNode* context,
                                         const XObjectArgVectorType& args,
                                         const xalanc::Locator* /*locator*/) const {
    // The message names a function that does not exist: this text is guaranteed.
    return callWithTimerId(FunctionCall(executionContext, context, args),
                           "The TimerDestroyID() function takes 1 argument!", 445, TimerDestroy);
}

I18NString FunctionTimerDestroy::TimerDestroy(const I18NString& id) {
    I18NString total = FunctionTimerTotal::TimerTotal(id);
    gmapTimers.erase(parseNumber(id));
    return total;
}
