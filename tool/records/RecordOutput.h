/**
 * @file
 * Where the results of all records go.
 */
#pragma once

#include "files/StandardOutput.h"
#include "xslt/AtomicFile.h"

#include <optional>
#include <string>

/** Puts results one behind the other. */
class RecordOutput {
public:
    /**
     * @param output a file, or "-" for standard output
     * @param wrap   the name of an element around all results; empty for none
     * @throws vexa::Error: Output
     */
    RecordOutput(const std::string& output, std::string wrap);

    /** @throws vexa::Error: Output */
    void add(const std::string& result);
    /** Gives what was added to a reader who waits for it. @throws vexa::Error: Output */
    void flush();
    /** Puts the file in its place. @throws vexa::Error: Output */
    void finish();

private:
    void write(const char* bytes, std::size_t size);
    void write(const std::string& text) { write(text.data(), text.size()); }
    /** Before the first result. @param declaration the XML declaration of this one */
    void begin(const std::string& declaration);

    const std::string m_wrap;
    bool m_isBegun = false;
    std::optional<AtomicFile> m_file;
    /** For the file. */
    std::string m_buffer;
    StandardOutput m_standardOutput;
};
