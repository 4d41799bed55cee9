/**
 * @file
 * Timers for stylesheets: TimerCreate, TimerStart, TimerStop, TimerTotal, TimerReset and
 * TimerDestroy.
 *
 * All timers are in one registry of the process, by number. A function that gets an unknown number
 * creates a stopped timer with that number. The registry has no lock: stylesheets that use timers
 * must not run in several threads at the same time.
 */
#pragma once

#include "functions/BuiltInFunction.h"

#include <nrb/I18NString.h>

#include <cstdint>
#include <map>

/** One timer. */
struct timeStopwatch {
    /** Start of the current interval, as MyCurrentTime() returns it; 0: the timer is stopped. */
    std::uint32_t ulStart = 0;
    /** Seconds of all finished intervals. */
    double dTotal = 0.0;
};

/** All timers of the process, as long as the library is loaded. */
extern std::map<int, timeStopwatch> gmapTimers;

/** The last number that TimerCreate has returned; it never decreases. */
extern int gnIndexTimerID;

/**
 * Converts a time stamp (YYYYMMDDhhmmssmmm) to the milliseconds since the start of its month plus
 * one day, because days count from 1. Missing fields of a short stamp are 0.
 */
std::uint32_t MyConvertTimeString(I18NString stamp);

/** The current time in the form of MyConvertTimeString(). */
std::uint32_t MyCurrentTime();

/** The seconds from `to` to `from`; negative if `to` is later. */
double MyTimeElapsed(std::uint32_t from, std::uint32_t to);

/** TimerCreate(): creates a timer; returns its number. */
class FunctionTimerCreate : public BuiltInFunction<FunctionTimerCreate> {
public:
    static constexpr const char* USAGE = "tqfunc:TimerCreate() takes no arguments!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    static I18NString TimerCreate();
};

/** TimerStart(id): starts an interval; returns its start in the form of MyConvertTimeString(). */
class FunctionTimerStart : public BuiltInFunction<FunctionTimerStart> {
public:
    static constexpr const char* USAGE = "tqfunc:TimerStart() takes a single timer id argument!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    static I18NString TimerStart(const I18NString& id);
};

/** TimerStop(id): ends the interval and adds it to the total; returns its length in seconds. */
class FunctionTimerStop : public BuiltInFunction<FunctionTimerStop> {
public:
    static constexpr const char* USAGE = "tqfunc:TimerStop() takes a single timer id argument!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    static I18NString TimerStop(const I18NString& id);
};

/** TimerTotal(id): returns the seconds of all intervals, including the current one. */
class FunctionTimerTotal : public BuiltInFunction<FunctionTimerTotal> {
public:
    static constexpr const char* USAGE = "tqfunc:TimerTotal() takes a single timer id argument!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    static I18NString TimerTotal(const I18NString& id);
};

/** TimerReset(id): returns the total, stops the timer and sets it to zero. */
class FunctionTimerReset : public BuiltInFunction<FunctionTimerReset> {
public:
    static constexpr const char* USAGE = "tqfunc:TimerReset() takes a single timer id argument!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    static I18NString TimerReset(const I18NString& id);
};

/** TimerDestroy(id): returns the total and deletes the timer. */
class FunctionTimerDestroy : public BuiltInFunction<FunctionTimerDestroy> {
public:
    static constexpr const char* USAGE = "tqfunc:TimerDestroy() takes a single timer id argument!";

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& executionContext,
                               xalanc::XalanNode* context, const XObjectArgVectorType& args,
                               const xalanc::Locator* locator) const override;

    static I18NString TimerDestroy(const I18NString& id);
};
