/**
 * @file
 * Each case of the corpus gives its expected result, with every kind of transform.
 */
#include "CorpusCase.h"
#include "Transforms.h"

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

/** Prints the size of the corpus at the end of the run. */
class CorpusSize : public ::testing::Environment {
public:
    void TearDown() override {
        std::set<std::string> families;
        for (const CorpusCase& corpusCase : corpus()) {
            families.insert(corpusCase.name.substr(0, corpusCase.name.find('/')));
        }
        std::cout << corpus().size() << " cases in " << families.size() << " families; "
                  << count([](const auto& c) { return c.expected.has_value(); })
                  << " with an expected result, "
                  << count([](const auto& c) { return !c.differences.empty(); })
                  << " with an explained difference\n";
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

/** All files of the corpus are found. */
TEST(CorpusSizeTest, ThereAreHundredsOfCases) {
    EXPECT_GE(corpus().size(), 300U);
}
