#include <nrb/NRBUtSystemInfo.h>

#include <cstdio>
#include <ctime>

std::string NRBUtSystemInfo::getTimeStamp(int /*kind*/) {
    // Read the clock once: between two readings, the second may change.
    std::timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm local{};
    localtime_r(&now.tv_sec, &local);

    char stamp[64];
    const int length =
        std::snprintf(stamp, sizeof stamp, "%04d%02d%02d%02d%02d%02d%03d", local.tm_year + 1900,
                      local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                      static_cast<int>(now.tv_nsec / 1'000'000));
    return std::string(stamp, static_cast<std::size_t>(length));
}
