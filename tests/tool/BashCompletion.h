/**
 * @file
 * Types into an interactive bash, and sees what the tabulator key makes of it.
 */
#pragma once

#include "ToolTest.h"

#include <utility>
#include <vector>

class BashCompletionTest : public ToolTest {
protected:
    using Lines = std::vector<std::string>;

    /**
     * Types the key behind each command line, which inserts all proposals.
     *
     * @param setup what the shell has read before, beside the completion
     * @return for each line the arguments that vexa-xslt then gets, as "<ARGUMENT><ARGUMENT>"
     */
    Lines completed(const Lines& lines, const std::string& setup = "");

    /** Expects of each line what it becomes, without the package bash-completion and with it. */
    void expectCompleted(const std::vector<std::pair<std::string, std::string>>& lines);
};
