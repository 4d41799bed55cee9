/**
 * @file
 * The kinds of transform that the library has, with their names in the corpus.
 */
#pragma once

#include "CorpusCase.h"

#include "support/BareEngine.h"

#include <functional>
#include <string>
#include <vector>

struct TransformKind {
    std::string name;
    /** Whether it is an XPath query, which needs an expression. */
    bool isQuery;
    /** Whether the error message is that of the engine, unchanged. */
    bool hasEngineMessage;
    std::function<EngineResult(const CorpusCase&)> run;
};

const std::vector<TransformKind>& allTransformKinds();
