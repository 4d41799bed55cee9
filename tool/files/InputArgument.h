/**
 * @file
 * File names on the command line, and the URIs that the engine wants.
 */
#pragma once

#include <nrb/I18NString.h>

#include <string>

/** What stands for standard input or standard output on the command line. */
constexpr const char* STANDARD_STREAM = "-";

/** A document that the engine is to read, as the user named it. */
class InputName {
public:
    /**
     * @param argument a file name, taken literally, or a URI of a scheme that the engine reads
     * @throws Failure for an empty name, and where the working directory is gone
     */
    explicit InputName(std::string argument);

    const std::string& asTyped() const { return m_strArgument; }

    /** A URI that stands for the file, whatever its name. */
    const std::string& uri() const { return m_strUri; }

    /** The URI as the engine is to be given it. @throws Failure if it is no text to the engine */
    I18NString forEngine() const;

    /** Whether it was given as a file name, not as a URI. */
    bool isFile() const { return m_bFile; }

    /** Whether it is a file, by its name or by a file URI. */
    bool isLocal() const;

    /**
     * Looks whether the file is there to be read: the engine's own texts tell less.
     * @throws Failure
     */
    void checkReadable() const;

    /** Whether a system id in a text of the engine stands for this document. */
    bool isSystemId(const std::string& systemId) const;

private:
    std::string m_strArgument;
    bool m_bFile;
    std::string m_strUri;
};

/** A name for people: the path of a file URI, any other system id as it is. */
std::string displayName(const std::string& systemId);
