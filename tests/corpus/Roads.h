/**
 * @file
 * The ways through the facade, each under the name by which the corpus calls it.
 */
#pragma once

#include "CorpusCase.h"

#include "support/BareEngine.h"

#include <functional>
#include <string>
#include <vector>

struct Road {
    std::string name;
    /** Whether it takes expressions instead of stylesheets. */
    bool forExpressions;
    /** Whether a failure's text is the engine's own. */
    bool keepsErrorText;
    std::function<EngineResult(const CorpusCase&)> run;
};

const std::vector<Road>& allRoads();
