#include <nrb/NRBUtSystemInfo.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/** The time that the clock returns; if it is 0, the real time. */
std::timespec g_fakeNow{};

/** Sets the time zone and, with setUtc(), the clock for one test. */
class FakeTime {
public:
    explicit FakeTime(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }
    ~FakeTime() {
        g_fakeNow = {};
        unsetenv("TZ");
        tzset();
    }
    void setUtc(int year, int month, int day, int hour, int minute, int second, int millisecond) {
        std::tm utc{};
        utc.tm_year = year - 1900;
        utc.tm_mon = month - 1;
        utc.tm_mday = day;
        utc.tm_hour = hour;
        utc.tm_min = minute;
        utc.tm_sec = second;
        g_fakeNow.tv_sec = timegm(&utc);
        g_fakeNow.tv_nsec = millisecond * 1'000'000L;
    }
};

/** The time zone of Athens as a POSIX rule: no time zone files are needed. */
constexpr const char* ATHENS = "EET-2EEST,M3.5.0/3,M10.5.0/4";

/** The current local time according to the C library. */
std::string secondsStamp() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%d%H%M%S", &local);
    return text;
}

} // namespace

/** Replaces the function of the C library, for all libraries of this process. */
extern "C" int clock_gettime(clockid_t clock, struct timespec* now) noexcept {
    if (clock == CLOCK_REALTIME && g_fakeNow.tv_sec != 0) {
        *now = g_fakeNow;
        return 0;
    }
    return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
}

TEST(NRBUtSystemInfo, ReturnsTheLocalTimeAsSeventeenDigits) {
    for (const char* zone : {"UTC0", ATHENS, "JST-9", "NST3:30"}) {
        const FakeTime time(zone);
        const std::string before = secondsStamp();
        const std::string stamp = NRBUtSystemInfo::getTimeStamp(0);
        const std::string after = secondsStamp();
        EXPECT_EQ(stamp.size(), 17U);
        EXPECT_EQ(stamp.find_first_not_of("0123456789"), std::string::npos);
        EXPECT_LE(before, stamp.substr(0, 14));
        EXPECT_GE(after, stamp.substr(0, 14));
    }
}

TEST(NRBUtSystemInfo, WritesLeadingZerosAndMillisecondZero) {
    FakeTime time("UTC0");
    time.setUtc(2026, 2, 3, 4, 5, 6, 7);
    EXPECT_EQ(NRBUtSystemInfo::getTimeStamp(0), "20260203040506007");
    time.setUtc(2026, 12, 31, 23, 59, 59, 999);
    EXPECT_EQ(NRBUtSystemInfo::getTimeStamp(0), "20261231235959999");
    time.setUtc(2027, 1, 1, 0, 0, 0, 0);
    EXPECT_EQ(NRBUtSystemInfo::getTimeStamp(0), "20270101000000000");
}

TEST(NRBUtSystemInfo, FollowsDaylightSavingTime) {
    FakeTime time(ATHENS);
    time.setUtc(2026, 3, 29, 0, 59, 59, 999);
    EXPECT_EQ(NRBUtSystemInfo::getTimeStamp(0), "20260329025959999");
    time.setUtc(2026, 3, 29, 1, 0, 0, 0);
    EXPECT_EQ(NRBUtSystemInfo::getTimeStamp(0), "20260329040000000");
    time.setUtc(2026, 10, 25, 0, 59, 59, 999);
    EXPECT_EQ(NRBUtSystemInfo::getTimeStamp(0), "20261025035959999");
    time.setUtc(2026, 10, 25, 1, 0, 0, 0);
    EXPECT_EQ(NRBUtSystemInfo::getTimeStamp(0), "20261025030000000");
}
