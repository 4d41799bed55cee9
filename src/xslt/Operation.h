/**
 * @file
 * One call of the host: what it reports, and how its failures become errors.
 */
#pragma once

#include "xslt/EngineUse.h"

#include <vexa/xslt/Options.h>

#include <exception>
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
 * Collects what one operation reports. The engine goes on after some exceptions (of document(), for
 * one) that must end the operation: they are kept here, and thrown again at the next hook and at
 * the end.
 */
class Operation {
public:
    /** @param options must live as long as the operation */
    explicit Operation(const vexa::Options& options) : m_options(options) {}
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    const vexa::Options& options() const { return m_options; }

    /** Adds to the diagnostics, and tells the host's handler, whose exceptions pass. */
    void report(vexa::Severity severity, std::string text, vexa::Location where);

    /** @throws the Error, with the diagnostics so far */
    [[noreturn]] void fail(vexa::ErrorKind kind, std::string text, vexa::Location where = {}) const;

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
    void keepCurrentException();
    /** Throws the current exception, as an Error if it is the engine's. */
    [[noreturn]] void throwAsError() const;

    const vexa::Options& m_options;
    vexa::ErrorKind m_kind = vexa::ErrorKind::Transform;
    std::vector<vexa::Diagnostic> m_diagnostics;
    std::exception_ptr m_kept;
};
