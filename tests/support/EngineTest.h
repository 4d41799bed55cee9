/**
 * @file
 * Test fixture that initializes the library for each test.
 */
#pragma once

#include <vexa/TQXslTransformer.h>

#include <gtest/gtest.h>

class EngineTest : public ::testing::Test {
protected:
    EngineTest() { TQXslTransformer_Initialize(nullptr); }
    ~EngineTest() override { TQXslTransformer_Terminate(nullptr); }
};
