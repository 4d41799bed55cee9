#include "process/WorkerPool.h"

#include "base/Errors.h"

#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

/** Does what the first word of a job says, and reports the job. */
int work(const WorkerChannel& channel, bool /*isFirst*/) {
    channel.send(Report::Kind::Started);
    while (const auto job = channel.nextJob()) {
        if (job->rfind("crash", 0) == 0) {
            std::raise(SIGKILL);
        } else if (job->rfind("hang", 0) == 0) {
            pause();
        } else if (job->rfind("tell", 0) == 0) {
            channel.send(Report::Kind::Message, "about " + *job);
        }
        channel.send(job->rfind("fail", 0) == 0 ? Report::Kind::Failed : Report::Kind::Done, *job);
    }
    return EXIT_DONE;
}

class WorkerPoolTest : public testing::Test {
protected:
    void begin(std::size_t workers, Limits limits = {}, WorkerPool::Work what = work) {
        m_pool.emplace(
            WorkerPool::Settings{"the pool", limits, workers, 4}, std::move(what),
            WorkerPool::Events{[this](const WorkerPool::Job& job, Report report) {
                                   if (job.text.rfind("slow", 0) == 0) {
                                       std::this_thread::sleep_for(std::chrono::seconds(4));
                                   }
                                   add(job, std::string(1, LETTERS[static_cast<int>(report.kind)]) +
                                                " " + report.text);
                               },
                               [this](const WorkerPool::Job& job, const ChildProcess::End& end,
                                      double milliseconds) {
                                   EXPECT_GE(milliseconds, 0);
                                   add(job, "L " + end.cause(m_limits));
                               },
                               [this](const WorkerPool::Job& job) {
                                   return !m_onlyFirst || job.number == *m_open.begin();
                               },
                               [this] { ++m_idle; }});
        m_limits = limits;
        m_pool->start();
    }
    void give(const std::string& text) {
        m_open.insert(m_count);
        m_pool->add({m_count++, text});
    }
    /** Fails where the pool stands still. */
    void waitForAll(bool isEnd = true) {
        const auto end = WorkerPool::Clock::now() + std::chrono::seconds(60);
        while (!m_pool->isDone()) {
            ASSERT_LT(WorkerPool::Clock::now(), end) << m_open.size() << " jobs are not done";
            m_pool->wait(-1, std::chrono::seconds(1));
        }
        if (isEnd) {
            m_pool->finish();
        }
    }

    std::optional<WorkerPool> m_pool;
    /** What came about each job. */
    std::map<std::uint64_t, std::vector<std::string>> m_news;
    /** Not done. */
    std::set<std::uint64_t> m_open;
    /** Only the first of these may report. */
    bool m_onlyFirst = false;
    int m_idle = 0;

private:
    /** Of the kinds of reports. */
    static constexpr const char* LETTERS = "SMDFG";

    void add(const WorkerPool::Job& job, const std::string& news) {
        m_news[job.number].push_back(news);
        if (news[0] != 'M') {
            EXPECT_EQ(m_open.erase(job.number), 1U) << job.text;
        }
    }

    std::uint64_t m_count = 1;
    Limits m_limits;
};

using News = std::vector<std::string>;

} // namespace

TEST_F(WorkerPoolTest, PassesOnWhatIsReported) {
    begin(2);
    EXPECT_FALSE(m_pool->isDone()); // whether one can start shows later
    for (const char* job : {"one", "tell two", "fail three", ""}) {
        give(job);
    }
    waitForAll();
    EXPECT_EQ(m_news[1], News{"D one"});
    EXPECT_EQ(m_news[2], (News{"M about tell two", "D tell two"}));
    EXPECT_EQ(m_news[3], News{"F fail three"});
    EXPECT_EQ(m_news[4], News{"D "});
    EXPECT_GT(m_idle, 0);
}

TEST_F(WorkerPoolTest, TakesJobsOfAnySize) {
    begin(1);
    const std::string large(5'000'000, 'x');
    give(large);
    give("small");
    give(large + "y");
    waitForAll();
    EXPECT_TRUE(m_news[1] == News{"D " + large});
    EXPECT_EQ(m_news[2], News{"D small"});
    EXPECT_TRUE(m_news[3] == News{"D " + large + "y"});
}

TEST_F(WorkerPoolTest, AProcessThatEndsCostsItsCurrentJob) {
    begin(1);
    give("one");
    give("crash");
    give("two");
    give("crash");
    give("crash");
    give("three");
    waitForAll();
    const News lost{"L killed from outside (SIGKILL), perhaps because memory ran out"};
    EXPECT_EQ(m_news[1], News{"D one"});
    EXPECT_EQ(m_news[2], lost);
    EXPECT_EQ(m_news[3], News{"D two"});
    EXPECT_EQ(m_news[4], lost);
    EXPECT_EQ(m_news[5], lost);
    EXPECT_EQ(m_news[6], News{"D three"});
}

/** Jobs that come back must not wait behind those that wait for them. */
TEST_F(WorkerPoolTest, GoesOnWhereOnlyTheFirstJobMayReport) {
    m_onlyFirst = true;
    begin(3);
    constexpr std::uint64_t COUNT = 300;
    std::uint64_t given = 0;
    const auto end = WorkerPool::Clock::now() + std::chrono::seconds(60);
    while (given < COUNT || !m_open.empty()) {
        ASSERT_LT(WorkerPool::Clock::now(), end) << m_open.size() << " jobs are not done";
        if (given < COUNT && m_pool->hasRoom()) {
            give(++given % 3 == 0 ? "crash" : "job");
        } else {
            m_pool->wait(-1, std::chrono::seconds(1));
        }
    }
    m_pool->finish();
    ASSERT_EQ(m_news.size(), COUNT);
    for (const auto& [number, news] : m_news) {
        EXPECT_EQ(news.size(), 1U);
        EXPECT_EQ(news.front()[0], number % 3 == 0 ? 'L' : 'D') << number;
    }
}

TEST_F(WorkerPoolTest, EndsAJobThatIsLate) {
    Limits limits;
    limits.maxSeconds = 1;
    begin(1, limits);
    give("hang");
    give("job");
    waitForAll();
    EXPECT_EQ(m_news[1], News{"L time limit of 1 s exceeded (--max-seconds)"});
    EXPECT_EQ(m_news[2], News{"D job"});
}

/** Its report does not fit into the connection, and meanwhile another one's is being taken. */
TEST_F(WorkerPoolTest, AJobIsNotLateBecauseItsReportIsTakenLate) {
    Limits limits;
    limits.maxSeconds = 1;
    begin(2, limits);
    for (const char* job : {"start", "start", "start"}) {
        give(job); // so that both processes have started
    }
    waitForAll(false);
    const std::string large(5'000'000, 'x');
    give("slow");
    give(large);
    waitForAll();
    EXPECT_EQ(m_news[4], News{"D slow"});
    EXPECT_TRUE(m_news[5] == News{"D " + large}) << m_news[5].front().substr(0, 80);
}

TEST_F(WorkerPoolTest, PassesOnWhatWasReportedBeforeItIsKilled) {
    begin(1);
    give("start");
    waitForAll(false);
    for (const char* job : {"one", "fail two", "hang", "three"}) {
        give(job);
    }
    std::this_thread::sleep_for(std::chrono::seconds(1)); // nobody takes the reports
    m_pool->kill();
    EXPECT_EQ(m_news[2], News{"D one"});
    EXPECT_EQ(m_news[3], News{"F fail two"});
    EXPECT_EQ(m_news.size(), 3U);
    EXPECT_EQ(m_open.size(), 2U);
}

TEST_F(WorkerPoolTest, SaysWhetherASourceIsReadable) {
    begin(1);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    while (!m_pool->isDone()) {
        EXPECT_FALSE(m_pool->wait(ends[0], std::chrono::seconds(1)));
    }
    ASSERT_EQ(write(ends[1], "x", 1), 1);
    EXPECT_TRUE(m_pool->wait(ends[0], std::chrono::seconds(1)));
    close(ends[0]);
    close(ends[1]);
    m_pool->finish();
}

TEST_F(WorkerPoolTest, FailsWhereNoProcessCanStart) {
    begin(1, {}, [](const WorkerChannel&, bool) -> int { return EXIT_DONE; });
    const auto waitLong = [&] {
        for (int i = 0; i < 100; ++i) {
            m_pool->wait(-1, std::chrono::seconds(1));
        }
    };
    EXPECT_THROW(waitLong(), Failure);
    begin(1, {}, [](const WorkerChannel& channel, bool isFirst) {
        channel.send(Report::Kind::GivenUp, isFirst ? "no use" : "");
        return EXIT_DONE;
    });
    try {
        waitLong();
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "no use");
    }
}
