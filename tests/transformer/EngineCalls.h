/**
 * @file
 * A record of the calls that the library makes into the engine, in their order and with their
 * arguments.
 *
 * A program with EngineCalls.cpp in it defines some of the engine's functions itself. The dynamic
 * linker takes these definitions; each one records its call and then calls the engine's own
 * function.
 */
#pragma once

#include <string>
#include <vector>

/**
 * Records from its construction on. Objects are named by their class, and by a number from the
 * second one of that class on: "XPathFactoryDefault 2". "~" before a name is a destruction.
 */
class EngineCallRecord {
public:
    EngineCallRecord();
    EngineCallRecord(const EngineCallRecord&) = delete;
    EngineCallRecord& operator=(const EngineCallRecord&) = delete;
    ~EngineCallRecord();

    /** Gives a name to an object that the library did not construct while this record existed. */
    void name(const void* object, const std::string& name);

    /** The calls since the record began, or since they were last taken. */
    std::vector<std::string> take();
};
