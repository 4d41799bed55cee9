#include "process/Channel.h"

#include <gtest/gtest.h>

#include <csignal>
#include <pthread.h>
#include <thread>
#include <unistd.h>

namespace {

using Reports = std::deque<Report>;

} // namespace

TEST(ChannelTest, CarriesJobsOneWayAndReportsTheOther) {
    Connection connection = openConnection();
    connection.schedulersEnd.send("7");
    connection.schedulersEnd.close();
    EXPECT_EQ(connection.workersEnd.nextJob(), "7");
    EXPECT_EQ(connection.workersEnd.nextJob(), std::nullopt);
    connection.workersEnd.send(Report::Kind::Started);
    connection.workersEnd.send(Report::Kind::Message, "text");
    Reports reports;
    EXPECT_TRUE(connection.schedulersEnd.receiveAll(reports));
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[0].kind, Report::Kind::Started);
    EXPECT_EQ(reports[1].text, "text");
}

TEST(ChannelTest, ShowsThatTheOtherEndIsGone) {
    Connection connection = openConnection();
    connection.workersEnd = WorkerChannel(Descriptor());
    connection.schedulersEnd.send("7"); // is lost, and raises no signal
    Reports reports;
    EXPECT_FALSE(connection.schedulersEnd.receiveAll(reports));
    EXPECT_TRUE(reports.empty());
    connection = openConnection();
    connection.schedulersEnd = SchedulerChannel();
    connection.workersEnd.send(Report::Kind::Done);
    EXPECT_EQ(connection.workersEnd.nextJob(), std::nullopt);
}

/** More than a socket holds at once. */
TEST(ChannelTest, CarriesTextsOfAnyLength) {
    Connection connection = openConnection();
    const std::string text(5'000'000, 'x');
    std::thread worker([&] {
        connection.workersEnd.send(Report::Kind::Message, text);
        connection.workersEnd.send(Report::Kind::Done);
    });
    Reports reports;
    while (reports.size() < 2) {
        ASSERT_TRUE(connection.schedulersEnd.receiveAll(reports));
    }
    worker.join();
    EXPECT_EQ(reports[0].text, text);
    EXPECT_EQ(reports[1].kind, Report::Kind::Done);
}

/** A handler that does not restart system calls. */
TEST(ChannelTest, WaitsOnAfterASignal) {
    static volatile std::sig_atomic_t calls = 0;
    struct sigaction counted {};
    struct sigaction before {};
    counted.sa_handler = [](int) { calls = calls + 1; };
    ASSERT_EQ(sigaction(SIGUSR1, &counted, &before), 0);
    Connection connection = openConnection();
    std::thread scheduler([&, waiting = pthread_self()] {
        for (int i = 0; i < 10; ++i) {
            usleep(10'000);
            pthread_kill(waiting, SIGUSR1);
        }
        connection.schedulersEnd.send("7");
    });
    EXPECT_EQ(connection.workersEnd.nextJob(), "7");
    scheduler.join();
    EXPECT_GT(calls, 0);
    sigaction(SIGUSR1, &before, nullptr);
}
