/**
 * @file
 * The library, started for as long as a command works.
 */
#pragma once

#include <vexa/TQXslTransformer.h>

class EngineSession {
public:
    EngineSession() { TQXslTransformer_Initialize(nullptr); }
    EngineSession(const EngineSession&) = delete;
    EngineSession& operator=(const EngineSession&) = delete;
    ~EngineSession() { TQXslTransformer_Terminate(nullptr); }
};
