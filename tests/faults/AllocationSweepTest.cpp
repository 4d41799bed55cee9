/**
 * @file
 * Runs every public operation once for each of its allocations, and lets that allocation fail.
 *
 * A problem in our code fails the test. A problem in an engine is counted: engines cannot be fixed
 * here, but no change of ours may lead into more of their defects. OutcomeCounts.h describes the
 * stored counts, and how to store them again.
 */
#include "EngineDefects.h"
#include "FailurePoint.h"
#include "OutcomeCounts.h"
#include "SweepFiles.h"

#include "support/MemoryChecker.h"

#include <vexa/TQXslTransformer.h>

#include <gtest/gtest.h>

#include <cctype>
#include <iostream>
#include <ostream>
#include <string>

std::ostream& operator<<(std::ostream& stream, const Operation& operation) {
    return stream << operation.name;
}

namespace {

const std::vector<Operation>& allOperations() {
    static const std::vector<Operation> operations = [] {
        std::vector<Operation> all;
        for (const auto& some : {platformOperations(), transformerOperations(), dom2DomOperations(),
                                 functionOperations(), xsltOperations()}) {
            all.insert(all.end(), some.begin(), some.end());
        }
        return all;
    }();
    return operations;
}

const CountTable& storedCounts() {
    static const CountTable table = readStoredCounts().value_or(CountTable());
    return table;
}

/** The counts of this run. */
CountTable g_counts;

class AllocationSweepTest : public ::testing::TestWithParam<Operation> {
protected:
    void SetUp() override {
        if (isUnderAMemoryChecker()) {
            GTEST_SKIP() << "the memory checker replaces operator new";
        }
        sweepFiles();
        if (GetParam().engine == Engine::Started) {
            TQXslTransformer_Initialize(nullptr);
        }
        warmUp();
    }
    void TearDown() override {
        if (GetParam().engine == Engine::Started && !IsSkipped()) {
            TQXslTransformer_Terminate(nullptr);
        }
    }

    /** Creates what is created once in a process. */
    static void warmUp() {
        for (int i = 0; i < 2; ++i) {
            const auto trial = GetParam().prepare();
            trial->operate();
            EXPECT_TRUE(trial->succeeded());
            EXPECT_TRUE(trial->stillWorks());
        }
    }

    void sweep(Shortage shortage) {
        std::size_t next = 1;
        for (;;) {
            Outcome outcome = tryFailurePoints(GetParam(), next, shortage);
            // All points before the last one of the process ended without a problem.
            m_counts.reported += outcome.allocation - next;
            if (!outcome.beyondTheLast) {
                count(outcome);
            }
            if (outcome.beyondTheLast) {
                return;
            }
            next = outcome.allocation + step();
        }
    }

    /** A start of the engines makes thousands of allocations, and each trial needs a start. */
    static std::size_t step() { return GetParam().engine == Engine::StartedByTheTrial ? 7 : 1; }

    void compareWithStored() const {
        const auto stored = storedCounts().find(GetParam().name);
        if (stored == storedCounts().end()) {
            ADD_FAILURE() << "no stored counts (OutcomeCounts.h describes how to store them)";
            return;
        }
        const std::string worse = describeWorse(m_counts, stored->second);
        EXPECT_EQ(worse, "") << "OutcomeCounts.h describes how to store the counts again";
        if (worse.empty() && !describeWorse(stored->second, m_counts).empty()) {
            std::cout << "Better than the stored counts, which can be stored again:\n"
                      << describeWorse(stored->second, m_counts);
        }
    }

    OutcomeCounts m_counts;

private:
    void count(Outcome& outcome) {
        removeKeptClones(outcome);
        // In a start, the only code of ours is the lock and the counter.
        const bool isLostInAStart =
            GetParam().engine == Engine::StartedByTheTrial && isDeathWithoutNames(outcome);
        if (outcome.problem == Problem::None) {
            ++m_counts.reported;
        } else if (!isEngineDefect(outcome) && !isLostInAStart) {
            ++m_counts.reported; // a failure of the test, and no engine defect
            if (m_shown++ < MOST_SHOWN) {
                ADD_FAILURE() << description(outcome);
            }
        } else {
            ++(outcome.problem == Problem::Death  ? m_counts.deaths
               : outcome.problem == Problem::Loss ? m_counts.losses
                                                  : m_counts.wrong);
        }
    }

    static std::string description(const Outcome& outcome) {
        std::string text = "allocation " + std::to_string(outcome.allocation) +
                           " fails: " + outcome.message + "\nIt fails in\n" +
                           list(outcome.failedIn);
        if (!outcome.diedIn.empty()) {
            text += "The process dies in\n" + list(outcome.diedIn);
        }
        for (const Calls& calls : outcome.lostIn) {
            text += "Lost, and allocated in\n" + list(calls);
        }
        return text;
    }

    static std::string list(const Calls& calls) {
        std::string text;
        for (const std::string& call : calls) {
            text += "    " + call.substr(0, 150) + '\n';
        }
        return text;
    }

    static constexpr int MOST_SHOWN = 5;
    int m_shown = 0;
};

} // namespace

TEST_P(AllocationSweepTest, FailuresAreReportedOrEngineDefects) {
    sweep(Shortage::Once);
    if (GetParam().engine == Engine::Unused) {
        // If all further allocations fail, the engines die, as their destructors allocate.
        sweep(Shortage::FromThenOn);
    }
    g_counts[GetParam().name] = m_counts;
    std::cout << m_counts.points() << " failure points: " << GetParam().name;
    if (m_counts.reported < m_counts.points()) {
        std::cout << " (in the engine: " << m_counts.deaths << " deaths, " << m_counts.losses
                  << " losses, " << m_counts.wrong << " wrong behaviours)";
    }
    std::cout << std::endl;
    compareWithStored();
}

/** Otherwise an operation that is removed by mistake would not be noticed. */
TEST(StoredCountsTest, AreOfOperationsThatAreTried) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "the memory checker replaces operator new";
    }
    CountTable stored = storedCounts();
    for (const Operation& operation : allOperations()) {
        stored.erase(operation.name);
    }
    for (const auto& [name, counts] : stored) {
        ADD_FAILURE() << "stored, but not tried: " << name;
    }
}

namespace {

std::string testName(const ::testing::TestParamInfo<Operation>& info) {
    std::string name;
    for (const char c : info.param.name) {
        name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    }
    return name;
}

class Total : public ::testing::Environment {
    void TearDown() override {
        std::size_t points = 0;
        std::vector<std::string> names;
        for (const Operation& operation : allOperations()) {
            points += g_counts[operation.name].points();
            names.push_back(operation.name);
        }
        std::cout << points << " failure points in all" << std::endl;
        const auto& unitTest = *::testing::UnitTest::GetInstance();
        if (unitTest.test_to_run_count() == unitTest.total_test_count() && points > 0) {
            writeCounts(g_counts, names);
        }
    }
};

const auto* const g_total = ::testing::AddGlobalTestEnvironment(new Total);

} // namespace

INSTANTIATE_TEST_SUITE_P(, AllocationSweepTest, ::testing::ValuesIn(allOperations()), testName);
