/**
 * @file
 * Runs the cases of a test file.
 */
#pragma once

#include "process/WorkerPool.h"
#include "testing/CaseResult.h"
#include "testing/TestFile.h"

#include <functional>

/** The cases run in another process, one after the other. One that ends the process is failed. */
class TestRun {
public:
    using Take = std::function<void(const TestCase&, const CaseResult&)>;

    /**
     * @param file borrowed
     * @param work what the process does: it is given numbers of cases, from 0, and sends a result
     *             as JSON for each; where files are outdated, their content as the outcome
     * @param take is given the results, in the order of the cases, when the files are written
     */
    TestRun(const TestFile& file, const Limits& limits, WorkerPool::Work work, Take take);
    TestRun(const TestRun&) = delete;
    TestRun& operator=(const TestRun&) = delete;

    /** @throws Failure where no process can start; std::runtime_error */
    void run();

private:
    void takeResult(const WorkerPool::Job& job, const Report& report);
    void takeLost(const WorkerPool::Job& job, const ChildProcess::End& end, double milliseconds);

    const TestFile& m_file;
    const Limits m_limits;
    const Take m_take;
    WorkerPool m_pool;
};
