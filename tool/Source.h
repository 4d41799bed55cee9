/**
 * @file
 * The document that a command works on: a file, a URI, or standard input.
 */
#pragma once

#include "FileNames.h"

#include <fstream>
#include <istream>
#include <optional>
#include <string>

class Source {
public:
    /** @param argument as on the command line */
    explicit Source(const std::string& argument);

    /** The file or URI; null for standard input. */
    const InputName* document() const { return m_document ? &*m_document : nullptr; }

    /** Whether it can be read as a stream. */
    bool isStream() const { return !m_document || m_document->isFile(); }

    /** What the user calls it. */
    std::string name() const;

    /** @throws Failure if it is not there to be read */
    void checkReadable() const;

    /** Opens it as a stream, which lives as long as this object. @throws Failure */
    std::istream& open();

    /** The engine takes a stream that fails for one that ends. @throws Failure if it failed */
    void checkRead() const;

private:
    std::optional<InputName> m_document;
    std::ifstream m_file;
};
