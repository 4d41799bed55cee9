/**
 * @file
 * What became of each source, for programs: one JSON line for each.
 */
#pragma once

#include "batch/BatchPlan.h"
#include "xslt/AtomicFile.h"

#include <vexa/xslt/Error.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>

class BatchReport {
public:
    /** @param file empty for no report, "-" for standard output. @throws vexa::Error: Output */
    explicit BatchReport(const std::string& file);

    /** Waits until a descriptor can be written. @return false where it is to be left alone */
    using Wait = std::function<bool(int descriptor)>;
    /** For all that is written from now on. */
    void setWait(Wait wait) { m_wait = std::move(wait); }

    /** @param outcome from one of the functions below. @throws vexa::Error: Output */
    void add(const BatchJob& job, const std::string& outcome);
    /** Its result is newer than it. @throws vexa::Error: Output */
    void addSkipped(const BatchJob& job);
    /** Puts the file in its place. @throws vexa::Error: Output */
    void commit();

private:
    void write();

    std::optional<AtomicFile> m_file;
    Wait m_wait = [](int /*descriptor*/) { return true; };
    std::string m_buffer;
};

/** A source that has a result. */
std::string doneOutcome(double milliseconds);
/** A source without one. */
std::string failedOutcome(double milliseconds, const vexa::Error& error);
/** A source whose worker is gone. @param kind "Crash", for one */
std::string lostOutcome(double milliseconds, const std::string& kind, const std::string& cause);
