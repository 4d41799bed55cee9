#include "FakeTimeStamp.h"

#include <nrb/NRBUtSystemInfo.h>

namespace {

std::string g_strStamp = "20260101000000000";

} // namespace

void setTimeStamp(const std::string& stamp) {
    g_strStamp = stamp;
}

/** Replaces the function of the platform library in this program. */
std::string NRBUtSystemInfo::getTimeStamp(int kind) {
    return kind == 0 ? g_strStamp : "called with another kind";
}
