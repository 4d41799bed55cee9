#include "base/Timing.h"

#include <cstdio>

namespace {

std::string line(const std::string& name, std::chrono::duration<double, std::milli> duration) {
    char text[128];
    std::snprintf(text, sizeof text, "%-24s %10.1f ms\n", name.c_str(), duration.count());
    return text;
}

} // namespace

void Timing::endPhase(const std::string& name) {
    const Clock::time_point now = Clock::now();
    m_phases.emplace_back(name, now - m_last);
    m_last = now;
}

std::string Timing::report() const {
    std::string text;
    for (const auto& [name, duration] : m_phases) {
        text += line(name, duration);
    }
    return text + line("total", m_last - m_begin);
}
