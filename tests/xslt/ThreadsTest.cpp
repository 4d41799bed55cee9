/**
 * @file
 * One Stylesheet, Document or XPath is used by any number of threads without a lock of the host's.
 * ThreadSanitizer sees the library's code here, helgrind the engine's too.
 */
#include "XsltTest.h"

#include "support/MemoryChecker.h"
#include "support/TestDocuments.h"

#include <atomic>
#include <sstream>
#include <thread>

using vexa::Call;
using vexa::Document;
using vexa::Input;
using vexa::Node;
using vexa::Options;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::XPath;

namespace {

constexpr int THREADS = 4;
const int REPETITIONS = isUnderAMemoryChecker() ? 3 : 50;

/** Runs the work in all threads at once, and gives what each has returned. */
template <typename Work>
std::vector<std::string> inThreads(Work work) {
    std::vector<std::string> results(THREADS);
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i) {
        threads.emplace_back([&, i] {
            ++ready;
            while (ready < THREADS) {
                std::this_thread::yield();
            }
            try {
                results[static_cast<std::size_t>(i)] = work(i);
            } catch (const std::exception& error) {
                results[static_cast<std::size_t>(i)] = error.what();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return results;
}

/** Most of the language: variables, keys, sorting, numbers, formats, messages, documents. */
const std::string CONTENT =
    "<xsl:output indent='yes'/><xsl:key name='k' match='i' use='@n mod 3'/>"
    "<xsl:decimal-format name='d' decimal-separator=','/><xsl:param name='p'/>"
    "<xsl:variable name='g' select='sum(//i/@n)'/><xsl:strip-space elements='*'/>"
    "<xsl:attribute-set name='s'><xsl:attribute name='x'><xsl:value-of select='$p'/>"
    "</xsl:attribute></xsl:attribute-set>"
    "<xsl:template match='/'><r xsl:use-attribute-sets='s' g='{$g}' xmlns:f='urn:f'>"
    "<xsl:variable name='v'><xsl:apply-templates select='//i'><xsl:sort select='@n' "
    "data-type='number' order='descending'/><xsl:sort select='.'/></xsl:apply-templates>"
    "</xsl:variable><xsl:copy-of select='exsl:node-set($v)/*[position() &lt; 5]'/>"
    "<xsl:for-each select='key(\"k\", 1)'><xsl:number level='any' format='I'/></xsl:for-each>"
    "<xsl:value-of select='id(\"x\")'/><xsl:value-of select='generate-id() = generate-id(/)'/>"
    "<xsl:value-of select='document(\"mem:/d\")/d'/><xsl:value-of select='f:f($v)'/>"
    "<xsl:value-of select='unparsed-entity-uri(\"pic\")'/><xsl:message>m</xsl:message>"
    "<xsl:value-of select=\"vexa:GetLocalizedString(4, 'de')\"/></r></xsl:template>"
    "<xsl:template match='i[@n mod 2 = 0]'><even><xsl:number value='@n' format='a'/></even>"
    "</xsl:template><xsl:template match='i'><odd><xsl:value-of "
    "select='format-number(@n, \"0,00\", \"d\")'/></odd></xsl:template>";

std::string manyItems() {
    std::string text = "<!DOCTYPE a [<!ATTLIST i d ID #IMPLIED><!NOTATION N SYSTEM 'n'>"
                       "<!ENTITY pic SYSTEM 'pic.png' NDATA N>]><a><i n='0' d='x'>first</i>";
    for (int i = 1; i < 60; ++i) {
        text +=
            "<i n='" + std::to_string(i * 7 % 60) + "'>\xC3\xA4 " + std::to_string(i) + "</i>\n";
    }
    return text + "</a>";
}

Options withDocument() {
    Options options;
    options.resolver = [](const std::string&, const std::string&) {
        return Input::text("<d>document</d>");
    };
    return options;
}

Transformation makeRun(const Stylesheet& sheet) {
    Transformation run(sheet, withDocument());
    run.parameter("p", "parameter").function("urn:f", "f", [](const Call& call) {
        return call.argument(0).nodes().front().string().size();
    });
    return run;
}

} // namespace

TEST(ThreadsTest, ShareAStylesheetAndADocument) {
    const Stylesheet sheet = compiled(CONTENT);
    const Document document = parsed(manyItems(), "mem:/source");
    const std::string expected = makeRun(sheet).toString(document);
    EXPECT_GT(expected.size(), 200U);
    const auto results = inThreads([&](int) {
        Transformation run = makeRun(sheet);
        std::string result;
        for (int i = 0; i < REPETITIONS; ++i) {
            result = run.toString(document);
            if (result != expected) {
                break;
            }
            if (run.toDocument(document).root().string().empty()) {
                return std::string("empty");
            }
        }
        return result;
    });
    for (const std::string& result : results) {
        EXPECT_EQ(result, expected);
    }
}

/** Nobody has used them before: what is made on first use is made by several at once. */
TEST(ThreadsTest, ShareAFreshStylesheetAndDocument) {
    const std::string expected = makeRun(compiled(CONTENT)).toString(Input::text(manyItems()));
    for (int i = 0; i < REPETITIONS; ++i) {
        const Stylesheet sheet = compiled(CONTENT);
        const Document document = parsed(manyItems());
        for (const std::string& result :
             inThreads([&](int) { return makeRun(sheet).toString(document); })) {
            ASSERT_EQ(result, expected);
        }
    }
}

/** The engine makes an empty table when something is looked for in it. */
TEST(ThreadsTest, ShareADocumentWithoutIdentifiersAndEntities) {
    const Stylesheet sheet =
        compiledRootTemplate("<xsl:value-of select='count(id(\"x\"))'/><xsl:value-of "
                             "select='unparsed-entity-uri(\"pic\")'/>");
    const Document source = parsed("<a/>");
    const XPath expression = XPath::compile("count(id('x'))");
    for (const Document& document :
         {source, Transformation(Stylesheet::compile(Input::text(copyingStylesheet())))
                      .toDocument(source)}) {
        for (const std::string& result : inThreads([&](int) {
                 return Transformation(sheet).toString(document) +
                        expression.evaluate(document).string();
             })) {
            EXPECT_EQ(result, "00");
        }
    }
}

TEST(ThreadsTest, ShareAResultThatIsADocument) {
    const Stylesheet copy = Stylesheet::compile(Input::text(copyingStylesheet()));
    const Document document = Transformation(copy).toDocument(Input::text(manyItems()));
    const std::string expected = document.xml();
    for (const std::string& result : inThreads([&](int) {
             std::string text;
             for (int i = 0; i < REPETITIONS; ++i) {
                 text = Transformation(copy).toString(document);
             }
             return text;
         })) {
        EXPECT_EQ(result, expected);
    }
}

TEST(ThreadsTest, ShareAnExpressionItsDocumentAndItsNodes) {
    const Document document = parsed(manyItems());
    const XPath nodes = XPath::compile("//i[@n > 10 and contains(., '1')] | //@d | id('x')");
    const XPath number = XPath::compile("count(following::i) + $x");
    const auto evaluate = [&] {
        std::string text;
        for (const Node& node : nodes.evaluate(document).nodes()) {
            text += node.name() + node.string() + node.xml() +
                    number.evaluate(node, Options(), {{"x", 1}}).string() + ";";
        }
        return text;
    };
    const std::string expected = evaluate();
    EXPECT_GT(expected.size(), 100U);
    for (const std::string& result : inThreads([&](int) {
             std::string text;
             for (int i = 0; i < REPETITIONS; ++i) {
                 text = evaluate();
             }
             return text;
         })) {
        EXPECT_EQ(result, expected);
    }
}

TEST(ThreadsTest, ParseAndCompileAtTheSameTime) {
    const std::string source = manyItems();
    const std::string expected = makeRun(compiled(CONTENT)).toString(Input::text(source));
    const Input sharedSource = Input::text(source);
    const Input sharedSheet = Input::text(stylesheet(CONTENT));
    for (const std::string& result : inThreads([&](int) {
             std::string text;
             for (int i = 0; i < REPETITIONS; ++i) {
                 text = makeRun(Stylesheet::compile(sharedSheet))
                            .toString(Document::parse(sharedSource));
                 text += XPath::compile("count(//i)").evaluate(parsed(source)).string();
             }
             return text;
         })) {
        EXPECT_EQ(result, expected + "60");
    }
}

TEST(ThreadsTest, FailNextToThoseThatDoNot) {
    const Stylesheet sheet = compiled(CONTENT);
    const Stylesheet failing = compiledRootTemplate(
        "<xsl:variable name='v'><xsl:copy-of select='//i'/></xsl:variable>"
        "<xsl:message terminate='yes'><xsl:value-of select='count(//i)'/></xsl:message>");
    const Document document = parsed(manyItems());
    const std::string expected = makeRun(sheet).toString(document);
    const auto results = inThreads([&](int thread) {
        std::string text;
        Transformation run = makeRun(sheet);
        for (int i = 0; i < REPETITIONS; ++i) {
            if (thread % 2 == 0) {
                text = run.toString(document);
            } else {
                text = failureOf([&] { Transformation(failing).toString(document); }).text();
                text +=
                    failureOf([&] { parsed("<a>"); }).kind() == vexa::ErrorKind::Parse ? "!" : "";
            }
        }
        return text;
    });
    for (int i = 0; i < THREADS; ++i) {
        EXPECT_EQ(results[static_cast<std::size_t>(i)], i % 2 == 0 ? expected : "60!");
    }
}

/** The last user of each object is a thread that has not made it. */
TEST(ThreadsTest, ObjectsEndInAnotherThreadThanTheyBegan) {
    for (int i = 0; i < REPETITIONS; ++i) {
        auto run = std::make_unique<Transformation>(makeRun(compiled(CONTENT)));
        auto document = std::make_unique<Document>(parsed(manyItems()));
        Node node = document->root();
        std::thread([run = std::move(run), document = std::move(document)]() mutable {
            run->toString(*document);
            document.reset();
            run->toString(Input::text("<a/>"));
            run.reset();
        }).join();
        EXPECT_EQ(node.type(), Node::Type::Root);
    }
}

TEST(ThreadsTest, ATransformationMayWanderFromThreadToThread) {
    Transformation run = makeRun(compiled(CONTENT));
    const std::string expected = run.toString(Input::text(manyItems()));
    for (int i = 0; i < 3; ++i) {
        std::string result;
        std::thread([&] { result = run.toString(Input::text(manyItems())); }).join();
        EXPECT_EQ(result, expected);
    }
}

/** Values and errors are copied between threads, and end anywhere. */
TEST(ThreadsTest, ValuesAndErrorsAreShared) {
    const vexa::Value value = XPath::compile("//i").evaluate(parsed(manyItems()));
    const vexa::Error error = failureOf([] { parsed("<a>"); });
    const auto described = [](const vexa::Value& nodes, const vexa::Error& failure) {
        std::string text = failure.what();
        for (const Node& node : nodes.nodes()) {
            text += node.string();
        }
        return text;
    };
    for (const std::string& result : inThreads([&](int) {
             const vexa::Value copy = value;
             const vexa::Error copiedError = error;
             return described(copy, copiedError);
         })) {
        EXPECT_EQ(result, described(value, error));
    }
}

class DocumentThreadsTest : public ::testing::TestWithParam<TestDocument> {};

/** Real stylesheets, with imports and thousands of instructions. */
TEST_P(DocumentThreadsTest, GiveTheSame) {
    Options options;
    options.access.externalEntities = true;
    const Stylesheet sheet = Stylesheet::compile(Input::file(GetParam().sheet), options);
    const Document document = Document::parse(Input::file(GetParam().source), options);
    const std::string expected = Transformation(sheet, options).toString(document);
    EXPECT_GT(expected.size(), 1000U);
    for (const std::string& result :
         inThreads([&](int) { return Transformation(sheet, options).toString(document); })) {
        EXPECT_TRUE(sameBytes(result, expected));
    }
}

INSTANTIATE_TEST_SUITE_P(, DocumentThreadsTest, ::testing::ValuesIn(testDocuments()),
                         [](const auto& test) { return test.param.name; });
