/**
 * @file
 * What a run executes, reported step by step.
 */
#pragma once

#include <vexa/xslt/Document.h>
#include <vexa/xslt/Export.h>
#include <vexa/xslt/Stylesheet.h>

#include <cstddef>

namespace vexa {

/** One execution of an instruction. It lives as long as the call that gets it. */
class VEXA_XSLT_EXPORT Step {
public:
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

    /** What is executed. It lives as long as the stylesheet. */
    const Instruction& instruction() const noexcept;
    /** Its index in Stylesheet::instructions(). */
    std::size_t index() const noexcept;
    /** The current node at its begin. A node that the run does not share is copied at each call. */
    Node node() const;

private:
    friend class StepAccess;
    struct VEXA_XSLT_LOCAL Data;
    VEXA_XSLT_LOCAL explicit Step(const Data& data) noexcept;
    const Data& m_data;
};

/**
 * Is called for each instruction that a run executes, on the thread of the run. For each enter()
 * that returns there is one leave(), after those of all steps inside: also where an error, a limit
 * or the host's own exception ends the run.
 *
 * The instructions of a template are steps inside of it; a template is inside of the instruction
 * that applies or calls it; a global variable is a step where it is first used. What the built-in
 * rule for texts and attributes copies is no step.
 */
class VEXA_XSLT_EXPORT Tracer {
public:
    virtual ~Tracer(); ///< It must not be in use.

    /** The step begins. What it throws ends the run, and passes to the caller of the operation. */
    virtual void enter(const Step& step) = 0;
    /** The step has ended. */
    virtual void leave(const Step& step) noexcept = 0;

    Tracer(const Tracer&) = delete;
    Tracer& operator=(const Tracer&) = delete;

protected:
    /** For the host's own class. */
    Tracer() = default;
};

} // namespace vexa
