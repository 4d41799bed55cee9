/**
 * @file
 * Stopwatches for stylesheets: TimerCreate, TimerStart, TimerStop, TimerTotal, TimerReset and
 * TimerDestroy.
 *
 * All timers live in one registry of the process, keyed by number. A function that is given a
 * number nobody uses makes a stopped timer of it. The registry has no lock: stylesheets that use
 * timers must not run in several threads at once.
 */
#pragma once

#include "functions/BuiltInFunction.h"

#include <nrb/I18NString.h>

#include <cstdint>
#include <map>

/** One timer. */
struct timeStopwatch {
    /** Start of the running lap as a count of MyCurrentTime; 0: the timer does not run. */
    std::uint32_t ulStart = 0;
    /** Seconds of the laps finished so far. */
    double dTotal = 0.0;
};

/** All timers of the process, from the library's load to its unload. */
extern std::map<int, timeStopwatch> gmapTimers;

/** The number that TimerCreate handed out last; it never goes back. */
extern int gnIndexTimerID;

/**
 * A time stamp (YYYYMMDDhhmmssmmm) as a count of milliseconds since the start of its month, plus
 * one day, as days count from 1. Fields that a short stamp lacks are 0.
 */
std::uint32_t MyConvertTimeString(I18NString stamp);

/** The present moment as such a count. */
std::uint32_t MyCurrentTime();

/** Seconds from `to` until `from`; negative where `to` is the later one. */
double MyTimeElapsed(std::uint32_t from, std::uint32_t to);

/** TimerCreate(): a new timer; gives its number. */
class FunctionTimerCreate : public BuiltInFunction<FunctionTimerCreate> {
public:
    static constexpr const char* USAGE = "tqfunc:TimerCreate() takes no arguments!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    static I18NString TimerCreate();
};

/** TimerStart(id): starts a lap; gives its start as a count of MyCurrentTime. */
class FunctionTimerStart : public BuiltInFunction<FunctionTimerStart> {
public:
    static constexpr const char* USAGE = "tqfunc:TimerStart() takes a single timer id argument!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    static I18NString TimerStart(const I18NString& id);
};

/** TimerStop(id): ends the lap and adds it to the total; gives the lap in seconds. */
class FunctionTimerStop : public BuiltInFunction<FunctionTimerStop> {
public:
    static constexpr const char* USAGE = "tqfunc:TimerStop() takes a single timer id argument!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    static I18NString TimerStop(const I18NString& id);
};

/** TimerTotal(id): gives the seconds of all laps, the running one included. */
class FunctionTimerTotal : public BuiltInFunction<FunctionTimerTotal> {
public:
    static constexpr const char* USAGE = "tqfunc:TimerTotal() takes a single timer id argument!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    static I18NString TimerTotal(const I18NString& id);
};

/** TimerReset(id): gives the total, then stops the timer and sets it to zero. */
class FunctionTimerReset : public BuiltInFunction<FunctionTimerReset> {
public:
    static constexpr const char* USAGE = "tqfunc:TimerReset() takes a single timer id argument!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    static I18NString TimerReset(const I18NString& id);
};

/** TimerDestroy(id): gives the total, then forgets the timer. */
class FunctionTimerDestroy : public BuiltInFunction<FunctionTimerDestroy> {
public:
    static constexpr const char* USAGE = "tqfunc:TimerDestroy() takes a single timer id argument!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    static I18NString TimerDestroy(const I18NString& id);
};
