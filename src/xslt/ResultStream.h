/**
 * @file
 * Bytes on their way from the engine's formatters.
 */
#pragma once

#include "xslt/OutputWriter.h"

#include "engine/EngineMemory.h"

#include <exception>

#include <xalanc/PlatformSupport/XalanOutputStream.hpp>

/** The bytes of a result, as the engine's formatters write them. */
class ResultStream : public xalanc::XalanOutputStream {
public:
    explicit ResultStream(OutputWriter& writer)
        : XalanOutputStream(engineMemory()), m_writer(writer) {}

protected:
    /** The engine's destructors flush: what is left of an abandoned result is dropped. */
    void writeData(const char* bytes, size_type size) override {
        if (std::uncaught_exceptions() == m_exceptions) {
            m_writer.write(bytes, size);
        }
    }
    void doFlush() override {}

private:
    OutputWriter& m_writer;
    const int m_exceptions = std::uncaught_exceptions();
};
