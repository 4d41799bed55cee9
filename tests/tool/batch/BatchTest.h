/**
 * @file
 * Many sources for one stylesheet.
 */
#pragma once

#include "tool/ToolTest.h"

#include <string>

class BatchTest : public ToolTest {
protected:
    BatchTest() { shell("mkdir sources"); }

    /** Writes "sources/s1.xml" and so on, which "ok.xsl" turns into "<b>1</b>" and so on. */
    void writeSources(int count) {
        shell("for i in $(seq " + std::to_string(count) +
              "); do echo \"<a>$i</a>\" >sources/s$i.xml; done");
    }

    /** How many results are right. */
    int rightResults(const std::string& folder = "out") {
        return std::stoi(shell("for f in " + folder +
                               "/s*.out; do i=${f##*/s}; read -r text <$f; "
                               "[ \"$text\" = \"<b>${i%.out}</b>\" ] && echo; done | wc -l")
                             .output);
    }

    /** The names of the files in a folder, sorted and parted by blanks. */
    std::string names(const std::string& folder = "out") {
        return shell("cd " + folder + " && echo $(LC_ALL=C ls -A)").output;
    }

    static std::string lastLine(const std::string& text) {
        const auto end = text.find_last_not_of('\n');
        const auto before = text.rfind('\n', end);
        return text.substr(before + 1, end - before);
    }
};
