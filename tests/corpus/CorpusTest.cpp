/**
 * @file
 * Each case of the corpus gives what it is to give, and gives it on every road.
 */
#include "CorpusCase.h"
#include "Roads.h"

#include "support/EngineTest.h"
#include "support/TestFiles.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <iostream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace {

const std::string ENGINE = "engine";

std::vector<CorpusCase> readCorpusOrGiveUp() {
    try {
        return readCorpus(projectFile("tests/corpus"));
    } catch (const std::runtime_error& error) {
        std::cerr << error.what() << '\n';
        std::exit(EXIT_FAILURE);
    }
}

const std::vector<CorpusCase>& corpus() {
    static const std::vector<CorpusCase> cases = readCorpusOrGiveUp();
    return cases;
}

/** A result as the corpus writes it. */
std::string written(const EngineResult& result) {
    return result.code == 0 ? result.output : "fails " + std::to_string(result.code);
}

bool holds(const std::string& text, const std::string& piece) {
    return text.find(piece) != std::string::npos;
}

/** How far a failed transform came is compared only where the engine's own transformer writes. */
bool agree(const Road& road, const EngineResult& result, const EngineResult& engine) {
    return written(result) == written(engine) &&
           (result.code == 0 || !road.keepsErrorText ||
            (result.error == engine.error && result.output == engine.output));
}

/** What the engine prints by itself would hide the names of failing cases. */
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

std::string asAttributeValue(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        escaped += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '"' ? "&quot;" : std::string(1, c);
    }
    return escaped;
}

std::string stylesheetFor(const std::string& expression) {
    return "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'"
           " xmlns:p='urn:p' xmlns:q='urn:q'><xsl:output method='text'/>"
           "<xsl:template match='/'><xsl:value-of select=\"" +
           asAttributeValue(expression) + "\"/></xsl:template></xsl:stylesheet>";
}

class CorpusTest : public EngineTest, public ::testing::WithParamInterface<CorpusCase> {
protected:
    CorpusTest() {
        if (m_case.stylesheet.empty()) {
            m_case.stylesheet = m_folder.write("expression.xsl", stylesheetFor(m_case.expression));
        }
    }

    void expectOfEngine(const EngineResult& engine) {
        const auto difference = m_case.differences.find(ENGINE);
        if (difference != m_case.differences.end()) {
            EXPECT_NE(written(engine), m_case.expected) << "The engine does not differ.";
            EXPECT_TRUE(sameBytes(written(engine), difference->second.result)) << engine.error;
        } else if (m_case.expected) {
            EXPECT_TRUE(sameBytes(written(engine), *m_case.expected)) << engine.error;
            EXPECT_TRUE(holds(engine.error, m_case.errorText)) << engine.error;
        } else {
            EXPECT_EQ(engine.code, 0) << engine.error;
        }
    }

    void expectOfRoad(const Road& road, const EngineResult& result, const EngineResult& engine) {
        const auto difference = m_case.differences.find(road.name);
        if (difference == m_case.differences.end()) {
            EXPECT_TRUE(agree(road, result, engine))
                << road.name << " gives \"" << written(result) << "\" " << result.error
                << "\ninstead of \"" << written(engine) << "\" " << engine.error;
            return;
        }
        EXPECT_FALSE(agree(road, result, engine))
            << road.name << " does not differ: " << difference->second.reason;
        EXPECT_TRUE(sameBytes(written(result), difference->second.result)) << road.name;
        m_explained.insert(road.name);
    }

    CorpusCase m_case = GetParam();
    std::set<std::string> m_explained{ENGINE};
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

/** Tells at the end of a whole run how much there was. */
class CorpusSize : public ::testing::Environment {
public:
    void TearDown() override {
        std::set<std::string> families;
        for (const CorpusCase& corpusCase : corpus()) {
            families.insert(corpusCase.name.substr(0, corpusCase.name.find('/')));
        }
        std::cout << corpus().size() << " cases in " << families.size() << " families; "
                  << count([](const auto& c) { return c.expected.has_value(); })
                  << " with their expected result, "
                  << count([](const auto& c) { return !c.differences.empty(); })
                  << " with a difference that is explained\n";
    }

private:
    template <typename Predicate>
    static std::ptrdiff_t count(Predicate predicate) {
        return std::count_if(corpus().begin(), corpus().end(), predicate);
    }
};

[[maybe_unused]] const auto* const CORPUS_SIZE =
    ::testing::AddGlobalTestEnvironment(new CorpusSize);

} // namespace

TEST_P(CorpusTest, IsTheSameOnEveryRoad) {
    const EngineResult engine = runBareEngine(m_case.source, m_case.stylesheet);
    expectOfEngine(engine);
    for (const Road& road : allRoads()) {
        if (!road.forExpressions || !m_case.expression.empty()) {
            expectOfRoad(road, road.run(m_case), engine);
        }
    }
    for (const auto& difference : m_case.differences) {
        EXPECT_EQ(m_explained.count(difference.first), 1U)
            << difference.first << " is no road of this case";
    }
}

INSTANTIATE_TEST_SUITE_P(, CorpusTest, ::testing::ValuesIn(corpus()),
                         [](const auto& test) { return asTestName(test.param.name); });

/** The corpus is found, and has not shrunk. */
TEST(CorpusSizeTest, ThereAreHundredsOfCases) {
    EXPECT_GE(corpus().size(), 300U);
}
