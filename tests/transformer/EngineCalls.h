/**
 * @file
 * Records the calls of engine functions by the library, in order and with their arguments.
 *
 * A program with EngineCalls.cpp defines some functions of the engine itself. The dynamic linker
 * uses these definitions: each of them records the call, and then calls the function of the engine.
 */
#pragma once

#include <string>
#include <vector>

/**
 * Records calls during its lifetime. The name of an object is its class, with a number from the
 * second object of the class on: "XPathFactoryDefault 2". "~" before a name is a destructor call.
 */
class EngineCallRecord {
public:
    EngineCallRecord();
    EngineCallRecord(const EngineCallRecord&) = delete;
    EngineCallRecord& operator=(const EngineCallRecord&) = delete;
    ~EngineCallRecord();

    /** Names an object that the library did not construct during the lifetime of this record. */
    void name(const void* object, const std::string& name);

    /** Returns the calls since the construction or the last take(). */
    std::vector<std::string> take();
};
