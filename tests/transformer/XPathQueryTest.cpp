#include "support/InMemoryTest.h"
#include "support/MemoryChecker.h"
#include "support/VEXAXslTransformerInspector.h"

#include <fstream>
#include <functional>
#include <pthread.h>
#include <sys/mman.h>
#include <ucontext.h>
#include <utility>
#include <vector>

#include <xalanc/XalanDOM/XalanDocument.hpp>

using XPathQueryTest = InMemoryTest;

TEST_P(XPathQueryTest, WritesAStringAsItsText) {
    const Dom2DomPtr document = parsed("<a><b>x</b></a>");
    EXPECT_EQ(queried(*document, "string(/a/b)"), "x");
    EXPECT_EQ(queried(*document, "'literal'"), "literal");
    EXPECT_EQ(queried(*document, "concat('<', string(//b), '&')"), "<x&");
    EXPECT_EQ(queried(*document, "string(/none)"), "");
}

TEST_P(XPathQueryTest, WritesASingleNodeAsXmlWithoutADeclaration) {
    const Dom2DomPtr document = parsed("<r><a i='1'>x<b/>&lt;&#945;</a><!--c--><?p d?>text</r>");
    EXPECT_EQ(queried(*document, "/r/a"), "<a i=\"1\">x<b/>&lt;\xCE\xB1</a>");
    EXPECT_EQ(queried(*document, "/r/comment()"), "<!--c-->");
    EXPECT_EQ(queried(*document, "/r/processing-instruction()"), "<?p d?>");
    EXPECT_EQ(queried(*document, "/r/text()"), "text");
    // The Xalan source tree declares the prefix xml there.
    EXPECT_EQ(queried(*parsed("<r/>"), "/").rfind("<r", 0), 0U);
}

TEST_P(XPathQueryTest, WritesCharactersThatAParserWouldChangeAsReferences) {
    const std::string element = "<a b=\"&#9;&#10;&#13;\">&#13;&#133;</a>";
    EXPECT_EQ(queried(*parsed("<r>" + element + "</r>"), "/r/a"), element);
}

TEST_P(XPathQueryTest, WritesNothingForZeroOrSeveralNodes) {
    const Dom2DomPtr document = parsed("<a><item/><item/></a>");
    EXPECT_EQ(queried(*document, "/a/item"), "");
    EXPECT_EQ(queried(*document, "/a/none"), "");
    EXPECT_EQ(queried(*document, "/a/item[2]"), "<item/>");
}

TEST_P(XPathQueryTest, WritesNothingForAnAttributeOrANamespaceNode) {
    const Dom2DomPtr document = parsed("<a i='1' xmlns:p='urn:p'/>");
    EXPECT_EQ(queried(*document, "/a/@i"), "");
    EXPECT_EQ(queried(*document, "/a/namespace::p"), "");
    EXPECT_EQ(queried(*document, "string(/a/@i)"), "1");
}

TEST_P(XPathQueryTest, WritesNothingForANumberOrABoolean) {
    const Dom2DomPtr document = parsed("<a/>");
    EXPECT_EQ(queried(*document, "count(/a)"), "");
    EXPECT_EQ(queried(*document, "true()"), "");
    EXPECT_EQ(queried(*document, "1 = 2"), "");
    EXPECT_EQ(queried(*document, "string(count(/a))"), "1");
    EXPECT_EQ(queried(*document, "string(true())"), "true");
}

TEST_P(XPathQueryTest, ReportsAWrongExpression) {
    const Dom2DomPtr document = parsed("<a/>");
    for (const char* wrong : {"a[", "(", "a b", "]", "//", "1 +", "nonsense()", "count()", "'open",
                              "none:a", "a/none:b", "@", "!", "", " ", "\n", "{", "a^b"}) {
        std::string result;
        EXPECT_EQ(query(*document, wrong, result), -1) << wrong;
        EXPECT_EQ(std::string(m_transformer.getLastError()).rfind("\nXSLException Type is: ", 0),
                  0U)
            << wrong << ": " << m_transformer.getLastError();
        EXPECT_EQ(result, "");
    }
    EXPECT_EQ(queried(*document, "string(count(a))"), "1");
    EXPECT_STREQ(m_transformer.getLastError(), "");
}

TEST_P(XPathQueryTest, ReportsAnEmptyExpression) {
    std::string result;
    query(*parsed("<a/>"), "", result);
    EXPECT_NE(std::string(m_transformer.getLastError()).find("The expression is empty."),
              std::string::npos)
        << m_transformer.getLastError();
}

TEST_P(XPathQueryTest, ReturnsTheResultOfAFailedParse) {
    const Dom2DomPtr document = m_transformer.createDom2Dom();
    document->InitializeInputSource("<a>");
    VEXAXslTransformerInspector::ownError(m_transformer) = "left by an earlier operation";
    std::string result;
    EXPECT_EQ(query(*document, "a[", result), -2);
    EXPECT_TRUE(VEXAXslTransformerInspector::ownError(m_transformer).empty());
    EXPECT_EQ(std::string(m_transformer.getLastError()).rfind("SAXParseException: ", 0), 0U);
    EXPECT_EQ(result, "");
}

TEST_P(XPathQueryTest, ResolvesPrefixesThatTheDocumentDeclares) {
    const Dom2DomPtr document = parsed("<p:a xmlns:p='urn:p' xmlns:q='urn:q'><q:b>x</q:b></p:a>");
    EXPECT_EQ(queried(*document, "string(/p:a/q:b)"), "x");
}

TEST_P(XPathQueryTest, ResolvesThePrefixXmlWithoutADeclaration) {
    const Dom2DomPtr document = parsed("<a xml:lang='en'/>");
    EXPECT_EQ(queried(*document, "string(/a/@xml:lang)"), "en");
}

TEST_P(XPathQueryTest, IgnoresTheWidthOfTheStream) {
    const Dom2DomPtr document = parsed("<a/>");
    std::ostringstream out;
    out.width(9);
    EXPECT_EQ(m_transformer.doXPath(*document, "'ab'", out), 0);
    EXPECT_EQ(out.str(), "ab");
}

TEST_P(XPathQueryTest, CannotCallFunctionsOfTheTransformer) {
    const Dom2DomPtr document = parsed("<a xmlns:v='" VEXA_XSL_EXTENSION_NAMESPACE "'/>");
    std::string result;
    EXPECT_EQ(query(*document, "v:GetDateTime()", result), -1);
}

TEST_P(XPathQueryTest, WritesCharactersOutsideTheBasicPlane) {
    const Dom2DomPtr document = parsed("<a>\xF0\x9F\x98\x80 \xF0\xA0\xAE\xB7</a>");
    EXPECT_EQ(queried(*document, "string(/a)"), "\xF0\x9F\x98\x80 \xF0\xA0\xAE\xB7");
    EXPECT_EQ(queried(*document, "'\xF0\x9F\x98\x80'"), "\xF0\x9F\x98\x80");
    EXPECT_EQ(queried(*document, "/a/text()"), "\xF0\x9F\x98\x80 \xF0\xA0\xAE\xB7");
}

TEST_P(XPathQueryTest, AcceptsNulAndLoneSurrogatesInAnExpression) {
    const Dom2DomPtr document = parsed("<a/>");
    std::ostringstream out;
    const I18NString withNul("'a'\0'b'", nullptr, 7);
    EXPECT_EQ(m_transformer.doXPath(*document, withNul, out), 0); // the expression ends at the NUL
    EXPECT_EQ(out.str(), "a");

    const I18NString loneSurrogate(u"'\xD800'", -1, nullptr, nullptr);
    out.str("");
    EXPECT_EQ(m_transformer.doXPath(*document, loneSurrogate, out), 0);
    EXPECT_EQ(out.str(), "\xEF\xBF\xBD");
}

TEST_P(XPathQueryTest, AcceptsAllKindsOfNames) {
    const Dom2DomPtr document = parsed("<_a><\xCE\xB1.b-c>x</\xCE\xB1.b-c><or1>y</or1></_a>");
    EXPECT_EQ(queried(*document, "string(/_a/\xCE\xB1.b-c)"), "x");
    EXPECT_EQ(queried(*document, "string(_a/or1)"), "y");
    EXPECT_EQ(queried(*document, "string(_a or _a/or1)"), "true");
}

TEST_P(XPathQueryTest, ReportsACharacterThatXmlDoesNotAllow) {
    const Dom2DomPtr document = parsed("<?xml version='1.1'?><a>x&#1;<b>y</b></a>");
    std::string result;
    EXPECT_EQ(query(*document, "/a", result), -2); // the engine throws a SAXException
    EXPECT_NE(std::string(m_transformer.getLastError()).find("invalid Unicode scalar"),
              std::string::npos)
        << m_transformer.getLastError();
    EXPECT_EQ(queried(*document, "string(/a)"), "x\1y");
    EXPECT_EQ(queried(*document, "/a/b"), "<b>y</b>");
}

TEST_P(XPathQueryTest, RejectsADom2DomWithoutADocument) {
    std::ostringstream stream;
    const Dom2DomPtr withoutMode = m_transformer.createDom2Dom();
    const Dom2DomPtr streamOutput = output(stream);
    for (Dom2Dom* document : {withoutMode.get(), streamOutput.get()}) {
        for (const char* expression : {"/", "//a", "count(/)", "/a", "string(/)", "1", "a", "."}) {
            std::string result;
            EXPECT_EQ(query(*document, expression, result), -1) << expression;
            EXPECT_STREQ(m_transformer.getLastError(),
                         "\nXSLException Type is: XalanXPathException\nMessage is: There is no "
                         "document to query. (Unknown URI, line -1, column -1)\n");
        }
    }
}

TEST_P(XPathQueryTest, QueriesAnEmptyDocument) {
    const Dom2DomPtr document = output();
    for (const char* expression : {"/", ".", "//a", "/a", "a", "string(/)", "count(/)"}) {
        EXPECT_EQ(queried(*document, expression), "") << expression;
    }
    EXPECT_EQ(queried(*document, "string(count(/))"), "1");
    EXPECT_EQ(queried(*document, "string(count(//node()))"), "0");
    std::string result;
    EXPECT_EQ(query(*document, "p:a", result), -1);
    EXPECT_EQ(queried(*document, "string(count(xml:a))"), "0");
}

TEST_P(XPathQueryTest, QueriesADocumentOfCommentsAndProcessingInstructions) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr document = output();
    transform(*in,
              sheet("<xsl:comment>c</xsl:comment>"
                    "<xsl:processing-instruction name='p'>d</xsl:processing-instruction>"),
              *document);
    EXPECT_EQ(queried(*document, "string(comment())"), "c");
    EXPECT_EQ(queried(*document, "/comment()"), "<!--c-->");
    EXPECT_EQ(queried(*document, "/"), "<!--c--><?p d?>");
    EXPECT_EQ(queried(*document, "//a"), "");
    EXPECT_EQ(queried(*document, "string(count(comment()/.. | /))"), "1");
    EXPECT_EQ(queried(*document, "string(count(//node()))"), "2");
    EXPECT_EQ(queried(*document, "comment()/following::node()"), "<?p d?>");
    EXPECT_EQ(queried(*document, "processing-instruction('p')/preceding::node()"), "<!--c-->");
    EXPECT_EQ(queried(*document, "string(count(comment()/ancestor-or-self::node()))"), "2");
    EXPECT_EQ(queried(*document, "string(comment()[/processing-instruction()])"), "c");
    EXPECT_EQ(queried(*document, "string(count(id('x')))"), "0");
    EXPECT_EQ(queried(*document, "string(lang('en'))"), "false");
    EXPECT_EQ(queried(*document, "string(count(comment()/namespace::*))"), "0");
    // The query has not changed the document.
    EXPECT_EQ(document->GetDocument()->getDocumentElement(), nullptr);
}

TEST_P(XPathQueryTest, QueriesTheResultOfATransform) {
    const Dom2DomPtr in = parsed("<a/>");
    const Dom2DomPtr out = output();
    transform(*in, sheet("<b><c>1</c><c>2</c></b>"), *out);
    EXPECT_EQ(queried(*out, "string(sum(/b/c))"), "3");
    EXPECT_EQ(queried(*out, "/b/c[2]"), "<c>2</c>");
}

TEST_P(XPathQueryTest, ReportsAStreamThatCannotBeWritten) {
    const Dom2DomPtr document = parsed("<a>" + std::string(100'000, 'x') + "</a>");
    std::ofstream full("/dev/full");
    EXPECT_EQ(m_transformer.doXPath(*document, "/a", full), -1);
    EXPECT_NE(std::string(m_transformer.getLastError()).find("XalanStdOutputStreamWriteException"),
              std::string::npos);
}

namespace {

std::string repeated(const std::string& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

} // namespace

namespace {

/** A stack with a guard page: an overflow crashes the program. */
class GuardedStack {
public:
    explicit GuardedStack(std::size_t size)
        : m_size(size), m_pMemory(mmap(nullptr, PAGE + size, PROT_READ | PROT_WRITE,
                                       MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
        EXPECT_NE(m_pMemory, MAP_FAILED);
        EXPECT_EQ(mprotect(m_pMemory, PAGE, PROT_NONE), 0);
    }
    GuardedStack(const GuardedStack&) = delete;
    GuardedStack& operator=(const GuardedStack&) = delete;
    ~GuardedStack() { munmap(m_pMemory, PAGE + m_size); }

    void* lowest() const { return static_cast<char*>(m_pMemory) + PAGE; }

private:
    static constexpr std::size_t PAGE = 64 * 1024; // a multiple of the page size on all platforms
    std::size_t m_size;
    void* m_pMemory;
};

void* runWork(void* work) {
    (*static_cast<std::function<void()>*>(work))();
    return nullptr;
}

/**
 * Runs a function in a thread with a stack of this size. The size of the main thread's stack is a
 * setting of the user, and pthread_create may reuse a larger stack of an earlier thread.
 */
void runOnStack(std::size_t size, std::function<void()> work) {
    const GuardedStack stack(size);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, stack.lowest(), size);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, runWork, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

constexpr std::size_t KIB = 1024;
constexpr std::size_t MIB = 1024 * KIB;

} // namespace

TEST_P(XPathQueryTest, RejectsExpressionsThatWouldOverflowTheStack) {
    const Dom2DomPtr document = parsed("<a/>");
    const auto expectRejected = [&](const std::string& expression) {
        std::string result;
        EXPECT_EQ(query(*document, expression, result), -1) << expression.substr(0, 20);
        EXPECT_NE(std::string(m_transformer.getLastError()).find("nested too deeply"),
                  std::string::npos)
            << m_transformer.getLastError();
    };
    runOnStack(8 * MIB, [&] {
        for (int depth : {30'000, 300'000}) {
            expectRejected(repeated("(", depth) + "1" + repeated(")", depth));
            expectRejected("a" + repeated("[a", depth) + repeated("]", depth));
            expectRejected(repeated("string(", depth) + "1" + repeated(")", depth));
            expectRejected(repeated("((", depth)); // never closed
        }
        for (const char* operation : {"+1", "-1", "*1", "=1", "!=1", "<1", " div 1", " mod 1"}) {
            expectRejected("1" + repeated(operation, 200'000));
        }
    });
}

TEST_P(XPathQueryTest, EvaluatesDeepExpressionsThatFitIntoTheDefaultStack) {
    const Dom2DomPtr document = parsed("<a/>");
    runOnStack(8 * MIB, [&] {
        EXPECT_EQ(queried(*document, "string(1" + repeated("+1", 4'200) + ")"), "4201");
        EXPECT_EQ(queried(*document, "string(count(." + repeated("/.", 3'500) + "))"), "1");
        EXPECT_EQ(queried(*document, "string(1" + repeated(" and 1", 4'000) + ")"), "true");
        EXPECT_EQ(queried(*document, "string(1" + repeated(" and 1", 4'000) + " and 0)"), "false");
        EXPECT_EQ(queried(*document, "string(0" + repeated(" or 0", 16'000) + ")"), "false");
        EXPECT_EQ(queried(*document, "string(0" + repeated(" or 0", 16'000) + " or 1)"), "true");
        EXPECT_EQ(queried(*document, "string" + repeated("(", 1'100) + "1" + repeated(")", 1'100)),
                  "1");
        EXPECT_EQ(queried(*document, "string(count(" + repeated("self::node()[", 1'100) + "1" +
                                         repeated("]", 1'100) + "))"),
                  "1");
    });
}

namespace {

std::function<void()> g_coroutineWork;

void runCoroutineWork() {
    g_coroutineWork();
}

/** Runs a function in a coroutine: the system does not know the bounds of its stack. */
void runInCoroutine(std::function<void()> work) {
    const GuardedStack stack(MIB);
    ucontext_t caller, coroutine;
    ASSERT_EQ(getcontext(&coroutine), 0);
    coroutine.uc_stack.ss_sp = stack.lowest();
    coroutine.uc_stack.ss_size = MIB;
    coroutine.uc_link = &caller;
    g_coroutineWork = std::move(work);
    makecontext(&coroutine, runCoroutineWork, 0);
    ASSERT_EQ(swapcontext(&caller, &coroutine), 0);
}

} // namespace

TEST_P(XPathQueryTest, TreatsAStackWithUnknownBoundsAsSmall) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "AddressSanitizer does not expect exceptions in a coroutine";
    }
    const Dom2DomPtr document = parsed("<a/>");
    runInCoroutine([&] {
        EXPECT_EQ(queried(*document, repeated("string(", 400) + "1" + repeated(")", 400)), "1");
        std::string result;
        EXPECT_EQ(query(*document, repeated("string(", 1'000) + "1" + repeated(")", 1'000), result),
                  -1);
    });
}

/** If each character counted, these chains would be twice as long as the stack allows. */
TEST_P(XPathQueryTest, CountsAnOperatorOfTwoCharactersOnce) {
    const Dom2DomPtr document = parsed("<a/>");
    runOnStack(sizeof(void*) == 8 ? MIB : MIB * 3 / 2, [&] {
        EXPECT_EQ(queried(*document, "string(1" + repeated("<=1", 4'000) + ")"), "true");
        EXPECT_EQ(queried(*document, "string(1" + repeated(">=1", 4'000) + ")"), "true");
        // (1 != 1) != 1 is true, and so on.
        EXPECT_EQ(queried(*document, "string(1" + repeated("!=1", 4'000) + ")"), "true");
        EXPECT_EQ(queried(*document, "string(1" + repeated("!=1", 4'001) + ")"), "false");
    });
}

namespace {

/** A pattern of expressions of any depth. */
struct DeepPattern {
    std::string begin;
    std::string repeatedPart;
    std::string middle;
    std::string repeatedEnd;

    std::string expression(int depth) const {
        return begin + repeated(repeatedPart, depth) + middle + repeated(repeatedEnd, depth);
    }
};

std::vector<DeepPattern> deepPatterns() {
    std::vector<DeepPattern> patterns = {
        {"", "(", "1", ")"},
        {"", "-(", "1", ")"},
        {"", "(", "1", " or 1)"},
        {"", "(1 and ", "1", ")"},
        {"", "(", "1", "=1)"},
        {"", "(1+", "1", ")"},
        {"", "(", "a", "|a)"},
        {"", "(", ".", ")[1]"},
        {"", "(", ".", "/.)"},
        {"", "0 or 1 and 1=1<1+1*-(", "1", ")"},
        {"", "(", "1", ")*1+1<1=1 and 1 or 1"},
        {"a", "[a", "", "]"},
        {"self::node()", "[self::node()", "", "]"},
        {"self::node()", "[1=1=1 and ./. or self::node()", "", "]"},
        {"self::node()", "[-(self::node()", "", ")[1]]"},
        {"", "string(", "1", ")"},
        {"", "string-length(", "1", ")"},
        {"", "concat('', '', '', ", "1", ")"},
        {"", "1+not(", "1", ")"},
        {"", "name(self::node()[", "1", "])"},
        {"1", "+1", "", ""},
        {"1", "*1", "", ""},
        {"1", "=1", "", ""},
        {"1", "!=1", "", ""},
        {"1", "<=1", "", ""},
        {"a", " and a", "", ""},
        {"b", " or b", "", ""},
        {".", "/.", "", ""},
        {"b", "//b", "", ""},
        {"", "self::node()/", ".", ""},
        // Element names that are also operators.
        {"or", "+or", "", ""},
        {"and", "=and", "", ""},
        {"", "- or ", "1", ""},
        {"1", "+.5or", "", ""},
        {"0", "+0 or child::or", "", ""},
        {"\xD9\xA3", "or \xD9\xA3", "", ""}, // a non-ASCII digit
    };
    // Chains before and after the deepest operand.
    const std::string sum = repeated("1+", 50), moreSum = repeated("+1", 50);
    patterns.push_back({"", "(", "1", ")" + moreSum});
    patterns.push_back({"", sum + "(", "1", ")"});
    patterns.push_back({sum, "string(", "1", ")"});
    const std::string steps = repeated("self::node()/", 20);
    patterns.push_back({steps + "self::node()", "[self::node()", "", "]"});
    patterns.push_back({"", "(" + steps + ".|", ".", ")"});
    return patterns;
}

} // namespace

TEST_P(XPathQueryTest, AcceptedExpressionsFitIntoTheStack) {
    if (isUnderAMemoryChecker()) {
        GTEST_SKIP() << "a memory checker is too slow for thousands of deep expressions";
    }
    const Dom2DomPtr document = parsed("<a><or/><and/></a>");
    for (std::size_t stack : {MIB, 256 * KIB}) {
        for (const DeepPattern& pattern : deepPatterns()) {
            runOnStack(stack, [&] {
                const auto isRejected = [&](int depth) {
                    std::string result;
                    query(*document, pattern.expression(depth), result);
                    return std::string(m_transformer.getLastError()).find("nested too deeply") !=
                           std::string::npos;
                };
                int accepted = 0, rejected = 40'000;
                EXPECT_TRUE(isRejected(rejected)) << pattern.expression(1).substr(0, 40);
                while (rejected - accepted > 1 + accepted / 100) {
                    const int depth = (accepted + rejected) / 2;
                    (isRejected(depth) ? rejected : accepted) = depth;
                }
                // One level of the longest pattern needs less than 64 KiB.
                EXPECT_GT(accepted, stack == MIB ? 10 : 0) << pattern.expression(1).substr(0, 40);
            });
        }
    }
}

TEST_P(XPathQueryTest, AcceptsAllKindsOfNamesInLongExpressions) {
    const Dom2DomPtr document = parsed("<a><Z_9-.or/><_/><\xC3\xA9 and='1'/></a>");
    EXPECT_EQ(queried(*document, "string(count(a/Z_9-.or" + repeated("|a/_", 300) +
                                     repeated("|a/\xC3\xA9[@and]", 300) +
                                     repeated(" | a/child::Z_9-.or", 5'000) + "))"),
              "3");
}

TEST_P(XPathQueryTest, LeavesUnmatchedBracketsToTheEngine) {
    const Dom2DomPtr document = parsed("<a/>");
    std::string result;
    EXPECT_EQ(query(*document, "1)" + repeated("+1", 600), result), -1);
    EXPECT_NE(std::string(m_transformer.getLastError()).find("Extra illegal token"),
              std::string::npos);
}

TEST_P(XPathQueryTest, AcceptsLongExpressionsThatAreNotDeep) {
    const Dom2DomPtr document = parsed("<a i='1'/>");
    EXPECT_EQ(queried(*document, "string(" + repeated("(", 900) + "1" + repeated(")", 900) + ")"),
              "1");
    EXPECT_EQ(queried(*document, "string(1" + repeated("+1", 4000) + ")"), "4001");
    EXPECT_EQ(queried(*document, "string(count(a[@i=0" + repeated(" or @i=1", 10'000) + "]))"),
              "1");
    EXPECT_EQ(
        queried(*document, "string(concat('', " + repeated("(1+1)+1=3,", 2'000) + "'x'))").size(),
        8001U);
    EXPECT_EQ(queried(*document, "string(count(a" + repeated("[1+1=2]", 2'000) + "))"), "1");
    EXPECT_EQ(queried(*document, "string(count(a" + repeated("|a/. ", 10'000) + "))"), "1");
    EXPECT_EQ(queried(*document, "string(count(a" + repeated("|a", 10'000) + "))"), "1");
    EXPECT_EQ(queried(*document, "string(string-length('" + repeated("((", 10'000) + "'))"),
              "20000");
    EXPECT_EQ(queried(*document, "string(string-length(\"" + repeated("+[", 10'000) + "\"))"),
              "20000");
    EXPECT_EQ(
        queried(*document, "string(string-length(concat('a'" + repeated(",'a'", 10'000) + ")))"),
        "10001");
}

INSTANTIATE_FOR_BOTH_TREES(XPathQueryTest);
