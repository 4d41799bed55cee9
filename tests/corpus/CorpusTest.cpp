/**
 * @file
 * Each case of the corpus gives its expected result, with every kind of transform.
 */
#include "CorpusCase.h"
#include "ExpressionStylesheet.h"
#include "Transforms.h"

#include "support/EngineTest.h"
#include "support/TestFiles.h"

#include <cctype>
#include <cstdlib>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

namespace {

const std::string ENGINE = "engine";

std::vector<CorpusCase> readCorpusOrExit() {
    try {
        return readCorpus(projectFile("tests/corpus"));
    } catch (const std::runtime_error& error) {
        std::cerr << error.what() << '\n';
        std::exit(EXIT_FAILURE);
    }
}

const std::vector<CorpusCase>& corpus() {
    static const std::vector<CorpusCase> cases = readCorpusOrExit();
    return cases;
}

/** A result in the format of the corpus files. */
std::string asExpected(const EngineResult& result) {
    return result.code == 0 ? result.output : "fails " + std::to_string(result.code);
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/** After a failure, message and output are compared only if they come from the engine unchanged. */
bool areEqual(const TransformKind& kind, const EngineResult& result, const EngineResult& engine) {
    return asExpected(result) == asExpected(engine) &&
           (result.code == 0 || !kind.hasEngineMessage ||
            (result.error == engine.error && result.output == engine.output));
}

/** The messages that the engine prints would hide the names of failed cases. */
class SilencedErrorStream {
public:
    SilencedErrorStream() : m_previous(std::cerr.rdbuf(m_text.rdbuf())) {}
    SilencedErrorStream(const SilencedErrorStream&) = delete;
    SilencedErrorStream& operator=(const SilencedErrorStream&) = delete;
    ~SilencedErrorStream() { std::cerr.rdbuf(m_previous); }

private:
    std::ostringstream m_text;
    std::streambuf* m_previous;
};

class CorpusTest : public EngineTest, public ::testing::WithParamInterface<CorpusCase> {
protected:
    CorpusTest() {
        if (m_case.stylesheet.empty()) {
            m_case.stylesheet =
                m_folder.write("expression.xsl", stylesheetForExpression(m_case.expression));
        }
    }

    void checkEngine(const EngineResult& engine) {
        const auto difference = m_case.differences.find(ENGINE);
        if (difference != m_case.differences.end()) {
            EXPECT_NE(asExpected(engine), m_case.expected) << "The engine does not differ.";
            EXPECT_TRUE(sameBytes(asExpected(engine), difference->second.result)) << engine.error;
        } else if (m_case.expected) {
            EXPECT_TRUE(sameBytes(asExpected(engine), *m_case.expected)) << engine.error;
            EXPECT_TRUE(contains(engine.error, m_case.errorText)) << engine.error;
        } else {
            EXPECT_EQ(engine.code, 0) << engine.error;
        }
    }

    void checkTransform(const TransformKind& kind, const EngineResult& result,
                        const EngineResult& engine) {
        const auto difference = m_case.differences.find(kind.name);
        if (difference == m_case.differences.end()) {
            EXPECT_TRUE(areEqual(kind, result, engine))
                << kind.name << " gives \"" << asExpected(result) << "\" " << result.error
                << "\ninstead of \"" << asExpected(engine) << "\" " << engine.error;
            return;
        }
        EXPECT_FALSE(areEqual(kind, result, engine))
            << kind.name << " does not differ: " << difference->second.explanation;
        EXPECT_TRUE(sameBytes(asExpected(result), difference->second.result)) << kind.name;
        m_differencesFound.insert(kind.name);
    }

    CorpusCase m_case = GetParam();
    std::set<std::string> m_differencesFound{ENGINE};
    TemporaryFolder m_folder;
    SilencedErrorStream m_silence;
};

std::string asTestName(const std::string& name) {
    std::string result;
    for (const char c : name) {
        result += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    }
    return result;
}

/** The number of cases, and how many of them have an expected result and explained differences. */
struct FamilyCounts {
    int cases = 0;
    int expected = 0;
    int differing = 0;

    void add(const FamilyCounts& other) {
        cases += other.cases;
        expected += other.expected;
        differing += other.differing;
    }
};

using Counts = std::map<std::string, FamilyCounts>;

Counts countCorpus() {
    Counts families;
    for (const CorpusCase& corpusCase : corpus()) {
        families[corpusCase.name.substr(0, corpusCase.name.find('/'))].add(
            {1, corpusCase.expected ? 1 : 0, corpusCase.differences.empty() ? 0 : 1});
    }
    return families;
}

/** The lines of counts.txt. */
std::string asText(const Counts& families) {
    std::string text;
    for (const auto& [family, counts] : families) {
        text += family + ' ' + std::to_string(counts.cases) + ' ' +
                std::to_string(counts.expected) + ' ' + std::to_string(counts.differing) + '\n';
    }
    return text;
}

/** Prints the size of the corpus at the end of the run. */
class CorpusSize : public ::testing::Environment {
    void TearDown() override {
        const Counts families = countCorpus();
        FamilyCounts total;
        for (const auto& family : families) {
            total.add(family.second);
        }
        std::cout << total.cases << " cases in " << families.size() << " families; "
                  << total.expected << " with an expected result, " << total.differing
                  << " with an explained difference\n";
    }
};

[[maybe_unused]] const auto* const CORPUS_SIZE =
    ::testing::AddGlobalTestEnvironment(new CorpusSize);

} // namespace

TEST_P(CorpusTest, EveryTransformGivesTheSameResult) {
    const EngineResult engine = runBareEngine(m_case.source, m_case.stylesheet);
    checkEngine(engine);
    for (const TransformKind& kind : allTransformKinds()) {
        if (!kind.isQuery || !m_case.expression.empty()) {
            checkTransform(kind, kind.run(m_case), engine);
        }
    }
    for (const auto& difference : m_case.differences) {
        EXPECT_EQ(m_differencesFound.count(difference.first), 1U)
            << difference.first << " is not a kind of transform of this case";
    }
}

INSTANTIATE_TEST_SUITE_P(, CorpusTest, ::testing::ValuesIn(corpus()),
                         [](const auto& test) { return asTestName(test.param.name); });

/** A lost case, or a lost expected result, would not be noticed otherwise. */
TEST(CorpusSizeTest, IsTheStoredOne) {
    std::string stored = readFile(projectFile("tests/corpus/counts.txt"));
    stored.erase(0, stored.find('\n') + 1); // the heading
    EXPECT_EQ(asText(countCorpus()), stored)
        << "counts.txt has to follow the cases: family, cases, expected results, differences";
}
