/**
 * @file
 * Every public operation with every one of its allocations failing.
 */
#include "EngineFaults.h"
#include "FailurePoint.h"
#include "Workplace.h"

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

std::size_t g_totalPoints = 0;

class AllocationSweepTest : public ::testing::TestWithParam<Operation> {
protected:
    void SetUp() override {
        if (isUnderAMemoryChecker()) {
            GTEST_SKIP() << "a memory checker has an operator new of its own";
        }
        workplace();
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

    /** What is made once in a process is made now. */
    static void warmUp() {
        for (int i = 0; i < 2; ++i) {
            const auto trial = GetParam().prepare();
            trial->operate();
            EXPECT_TRUE(trial->succeeded());
            EXPECT_TRUE(trial->servesOn());
        }
    }

    void sweep(Shortage shortage) {
        std::size_t next = 1;
        for (;;) {
            Outcome outcome = tryFailurePoints(GetParam(), next, shortage);
            m_points += outcome.allocation - next + (outcome.beyondTheLast ? 0 : 1);
            judge(outcome);
            if (outcome.beyondTheLast) {
                return;
            }
            next = outcome.allocation + step();
        }
    }

    /** A start of the engines makes thousands of allocations, and each takes a start to try. */
    static std::size_t step() { return GetParam().engine == Engine::StartedByTheTrial ? 7 : 1; }

    std::size_t m_points = 0;
    std::size_t m_deaths = 0;
    std::size_t m_losses = 0;
    std::size_t m_wrong = 0;

private:
    void judge(Outcome& outcome) {
        forgetKeptClones(outcome);
        if (outcome.trouble == Trouble::None) {
            return;
        }
        // Of a start, ours are only the lock and the count.
        const bool isLostInAStart =
            GetParam().engine == Engine::StartedByTheTrial && isADeathWithoutNames(outcome);
        if (!isTheEngines(outcome) && !isLostInAStart) {
            if (m_shown++ < MOST_SHOWN) {
                ADD_FAILURE() << description(outcome);
            }
            return;
        }
        ++(outcome.trouble == Trouble::Death  ? m_deaths
           : outcome.trouble == Trouble::Loss ? m_losses
                                              : m_wrong);
    }

    static std::string description(const Outcome& outcome) {
        std::string text = "allocation " + std::to_string(outcome.allocation) +
                           " fails: " + outcome.complaint + "\nIt fails in\n" +
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

TEST_P(AllocationSweepTest, NoFailureOfOursComesOfIt) {
    sweep(Shortage::Once);
    if (GetParam().engine == Engine::Unused) {
        // The engines die of a shortage that lasts: their destructors allocate.
        sweep(Shortage::FromThenOn);
    }
    g_totalPoints += m_points;
    std::cout << m_points << " failure points: " << GetParam().name;
    if (m_deaths + m_losses + m_wrong > 0) {
        std::cout << " (of the engine: " << m_deaths << " deaths, " << m_losses << " losses, "
                  << m_wrong << " wrong behaviours)";
    }
    std::cout << std::endl;
}

namespace {

std::vector<Operation> allOperations() {
    std::vector<Operation> all;
    for (const auto& some : {platformOperations(), transformerOperations(), holderOperations(),
                             functionOperations()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

std::string testName(const ::testing::TestParamInfo<Operation>& info) {
    std::string name;
    for (const char c : info.param.name) {
        name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    }
    return name;
}

class Total : public ::testing::Environment {
    void TearDown() override {
        std::cout << g_totalPoints << " failure points in all" << std::endl;
    }
};

const auto* const g_total = ::testing::AddGlobalTestEnvironment(new Total);

} // namespace

INSTANTIATE_TEST_SUITE_P(, AllocationSweepTest, ::testing::ValuesIn(allOperations()), testName);
