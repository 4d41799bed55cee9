#include "batch/ProgressBar.h"

#include <gtest/gtest.h>

namespace {

Tally tally(std::size_t total, std::size_t done, std::size_t failed) {
    Tally figures;
    figures.total = total;
    figures.done = done;
    figures.failed = failed;
    return figures;
}

} // namespace

TEST(ProgressLineTest, ShowsHowFarItIsHowFastAndHowLongItTakes) {
    EXPECT_EQ(progressLine(tally(1000, 448, 2), 5, 80),
              "[=============>                ] 450 of 1000, 90/s, 0:06 left, 2 failed");
    EXPECT_EQ(progressLine(tally(4, 1, 0), 0.5, 60),
              "[=======>                      ] 1 of 4, 2.0/s, 0:02 left");
    EXPECT_EQ(progressLine(tally(4, 1, 0), 0, 60), "[=======>                      ] 1 of 4");
    EXPECT_EQ(progressLine(tally(4, 4, 0), 2, 60),
              "[==============================] 4 of 4, 2.0/s, 0:00 left");
    EXPECT_EQ(progressLine(tally(20'000, 1, 0), 1, 60),
              "[>                        ] 1 of 20000, 1.0/s, 5:33:19 left");
    EXPECT_EQ(progressLine(tally(4, 0, 0), 1, 60), "[>                             ] 0 of 4");
}

TEST(ProgressLineTest, FitsTheTerminal) {
    const Tally figures = tally(1000, 500, 0);
    EXPECT_EQ(progressLine(figures, 5, 45), "[======>     ] 500 of 1000, 100/s, 0:05 left");
    EXPECT_EQ(progressLine(figures, 5, 40), "500 of 1000, 100/s, 0:05 left");
    EXPECT_EQ(progressLine(figures, 5, 12), "500 of 1000");
}
