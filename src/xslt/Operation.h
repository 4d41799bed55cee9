/**
 * @file
 * One call of the host: what it reports, and how its failures become errors.
 */
#pragma once

#include "xslt/EngineUse.h"

#include <vexa/xslt/Options.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <exception>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <xercesc/sax/Locator.hpp>

/** The place that a locator of the engine names, as far as it knows. */
vexa::Location toLocation(const xercesc::Locator* locator);

/** A text of the engine on one line, without white space at its ends. */
std::string cleanText(const std::string& text);

/**
 * Collects what one operation reports, and ends it where it reaches a limit or is cancelled. The
 * engine goes on after some exceptions (of document(), for one) that must end the operation: they
 * are kept here, and thrown again at the next poll and at the end.
 */
class Operation {
public:
    /** @param options must live as long as the operation */
    explicit Operation(const vexa::Options& options);
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    const vexa::Options& options() const { return m_options; }

    /** Adds to the diagnostics, and tells the host's handler, whose exceptions pass. */
    void report(vexa::Severity severity, std::string text, vexa::Location where);

    /** @throws the Error, with the diagnostics so far */
    [[noreturn]] void fail(vexa::ErrorKind kind, std::string text, vexa::Location where = {}) const;

    /** Tells where the engine is, for errors that have no place of their own. */
    using Place = std::function<vexa::Location()>;
    void setPlace(Place place) { m_place = std::move(place); }
    vexa::Location place() const { return m_place ? m_place() : vexa::Location(); }

    /**
     * Is called often, by all hooks into the engine.
     * @throws vexa::Error: Limit, Cancelled; what was kept
     */
    void poll() {
        if (m_needsPolls) {
            checkBounds();
        }
    }

    /** Begins to count and to measure again: for the next part of long work. */
    void restart();

    /** Whether polls look at the limits. Where they end more than they should, checkLimits() does.
     */
    void setPollsLimits(bool pollsLimits) { m_pollsLimits = pollsLimits; }
    /** @throws vexa::Error: Limit */
    void checkLimits();

    /** Whether anything can end it between polls. */
    bool isBounded() const { return m_needsPolls; }

    /** @param depth of templates, or of elements while parsing. @throws vexa::Error: Limit */
    void checkDepth(std::size_t depth) {
        if (depth > m_mostDepth) {
            stopAtLimit("depth", m_options.limits.depth, "");
        }
    }

    /** Counts bytes of the result. @throws vexa::Error: Limit */
    void takeOutput(std::size_t bytes) {
        m_output += bytes;
        if (m_output > m_mostOutput) {
            stopAtLimit("output", m_options.limits.output, " bytes");
        }
    }

    /**
     * Counts bytes that are about to be held. A large piece may be refused, and is a poll: the
     * parser takes one for each entity. At many small ones the engine would not survive an
     * exception: the next poll throws it.
     *
     * @throws vexa::Error: Limit, Cancelled
     */
    void takeMemory(std::size_t bytes) {
        m_memory += static_cast<std::ptrdiff_t>(bytes);
        if (m_memory > m_mostMemory || bytes >= LARGE_PIECE) {
            checkMemory(bytes);
        }
    }
    void returnMemory(std::size_t bytes) { m_memory -= static_cast<std::ptrdiff_t>(bytes); }

    /** Appends to a text that counts as memory. @throws vexa::Error: Limit, Cancelled */
    template <typename Character>
    void append(std::basic_string<Character>& text, const Character* more, std::size_t length) {
        const std::size_t before = text.capacity();
        if (before - text.size() < length) {
            // For a moment there are two of them.
            const std::size_t after = std::max(before * 2, text.size() + length);
            takeMemory(after * sizeof(Character));
            text.reserve(after);
            returnMemory(before * sizeof(Character));
        }
        text.append(more, length);
    }

    /**
     * Runs a piece of work that the engine may go on after. The first exception is kept; after it
     * nothing is done any more.
     */
    template <typename Work>
    auto keepingException(Work work) -> std::invoke_result_t<Work> {
        throwKept();
        try {
            return work();
        } catch (...) {
            keepCurrentException();
            throw;
        }
    }
    void throwKept() const {
        if (m_kept) {
            std::rethrow_exception(m_kept);
        }
    }

    /**
     * Runs the operation. The engine's exceptions have their memory from the engine's objects:
     * these must live until this function has ended.
     *
     * @param kind what an error of the engine is called that has no kind of its own
     * @throws vexa::Error in place of the engine's exceptions; others as they are
     */
    template <typename Work>
    auto run(vexa::ErrorKind kind, Work work) -> std::invoke_result_t<Work> {
        m_kind = kind;
        try {
            if constexpr (std::is_void_v<std::invoke_result_t<Work>>) {
                work();
                throwKept();
            } else {
                auto result = work();
                throwKept();
                return result;
            }
        } catch (...) {
            throwKept();
            throwAsError();
        }
    }

private:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t LARGE_PIECE = std::size_t{32} * 1024;

    void checkBounds();
    void checkMemory(std::size_t bytes);
    [[noreturn]] void stop(vexa::ErrorKind kind, std::string text);
    [[noreturn]] void stopAtLimit(const char* limit, std::size_t value, const char* unit);
    void keepCurrentException();
    /** Throws the current exception, as an Error if it is the engine's. */
    [[noreturn]] void throwAsError() const;

    const vexa::Options& m_options;
    vexa::ErrorKind m_kind = vexa::ErrorKind::Transform;
    std::vector<vexa::Diagnostic> m_diagnostics;
    std::exception_ptr m_kept;
    Place m_place;

    const std::ptrdiff_t m_mostMemory;
    const std::size_t m_mostOutput;
    const std::size_t m_mostDepth;
    Clock::time_point m_end;
    std::ptrdiff_t m_memory = 0;
    std::size_t m_output = 0;
    bool m_isOverMemory = false;
    bool m_pollsLimits = true;
    bool m_needsPolls;
};
