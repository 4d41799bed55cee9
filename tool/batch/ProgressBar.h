/**
 * @file
 * How far long work has come, on a terminal.
 */
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

/** The figures of a batch, or of the records of a source. */
struct Tally {
    /** How many there are; 0 where only the size of the source is known. */
    std::size_t total = 0;
    std::size_t done = 0;
    std::size_t failed = 0;
    /** They had a result already. */
    std::size_t skipped = 0;
    /** Of the source. */
    std::uint64_t bytes = 0;
    std::uint64_t bytesRead = 0;

    std::size_t finished() const { return done + failed + skipped; }
    /** From 0 to 1. */
    double share() const;
};

/** One line at the bottom of standard error. Draws nothing where that is no terminal. */
class ProgressBar {
public:
    using Clock = std::chrono::steady_clock;

    /** @param wanted false to draw nothing anywhere */
    explicit ProgressBar(bool wanted);

    /** Whether it may ever be drawn. */
    bool isShown() const { return m_bShown; }
    /** Draws it anew, unless that was done a moment ago. */
    void draw(const Tally& tally);

    /** Makes room for other lines. */
    void clear();

    /** When it is to be drawn again although nothing has happened. */
    Clock::duration interval() const;

private:
    /** What takes no longer needs no progress bar. */
    static constexpr auto DELAY = std::chrono::seconds(1);

    bool m_bShown;
    bool m_bOnScreen = false;
    Clock::time_point m_begin = Clock::now();
    Clock::time_point m_lastDrawn;
};

/**
 * The line: "[====>     ] 450 of 1000, 81/s, 0:07 left, 2 failed", no wider than the terminal.
 *
 * @param seconds since the batch began
 */
std::string progressLine(const Tally& tally, double seconds, std::size_t columns);
