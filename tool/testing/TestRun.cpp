#include "testing/TestRun.h"

#include "base/Errors.h"
#include "files/ReportFile.h"
#include "testing/CaseCheck.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

TestRun::TestRun(const TestFile& file, const Limits& limits, WorkerPool::Work work, Take take)
    : m_file(file), m_limits(limits), m_take(std::move(take)),
      m_pool({oneLine(file.name), limits, 1, 1}, std::move(work),
             {[this](const WorkerPool::Job& job, const Report& report) { takeResult(job, report); },
              [this](const WorkerPool::Job& job, const ChildProcess::End& end,
                     double milliseconds) { takeLost(job, end, milliseconds); },
              [](const WorkerPool::Job& /*job*/) { return true; }}) {}

void TestRun::run() {
    m_pool.start();
    for (std::size_t i = 0; i < m_file.cases.size(); ++i) {
        m_pool.add({i, std::to_string(i)});
    }
    while (!m_pool.isDone()) {
        m_pool.wait(-1, std::chrono::hours(1));
    }
    m_pool.finish();
}

void TestRun::takeResult(const WorkerPool::Job& job, const Report& report) {
    const TestCase& test = m_file.cases.at(static_cast<std::size_t>(job.number));
    CaseResult result = CaseResult::fromJson(report.text);
    std::vector<std::size_t> updated;
    for (const std::size_t index : result.outdated) {
        const std::string& name = test.expectations.at(index).text;
        try {
            writeReport(name, report.outcome);
            updated.push_back(index);
        } catch (const vexa::Error& error) {
            result.failures.push_back(name + ": " + error.text());
        }
    }
    result.outdated = updated;
    m_take(test, result);
}

void TestRun::takeLost(const WorkerPool::Job& job, const ChildProcess::End& end,
                       double milliseconds) {
    const TestCase& test = m_file.cases.at(static_cast<std::size_t>(job.number));
    const std::string cause = end.cause(m_limits);
    CaseOutcome outcome;
    outcome.error = {end.wasLate ? "Limit" : "Crash", cause,
                     oneLine(m_file.stylesheet + ": " + cause)};
    CaseResult result = checkCase(test, outcome, std::nullopt, {});
    result.milliseconds = milliseconds;
    m_take(test, result);
}
