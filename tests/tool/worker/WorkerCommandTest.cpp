#include "support/MemoryChecker.h"
#include "tool/ToolTest.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <fstream>
#include <sstream>
#include <vector>

namespace {

/** An answer, read by another's parser. */
class Reply {
public:
    explicit Reply(const std::string& line) {
        m_json.Parse<rapidjson::kParseValidateEncodingFlag>(line.data(), line.size());
        EXPECT_FALSE(m_json.HasParseError()) << line;
    }
    bool has(const char* name) const { return m_json.HasMember(name); }
    std::string text(const char* name) const { return m_json[name].GetString(); }
    std::string error(const char* name) const {
        return has("error") ? m_json["error"][name].GetString() : "no error";
    }
    const rapidjson::Value& operator[](const char* name) const { return m_json[name]; }
    /** The texts of the messages, each with a "|" behind it. */
    std::string messages() const {
        std::string texts;
        for (const auto& message : m_json["messages"].GetArray()) {
            texts += message["text"].GetString() + std::string("|");
        }
        return texts;
    }

private:
    rapidjson::Document m_json;
};

std::string quoted(const std::string& text) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    return {buffer.GetString(), buffer.GetSize()};
}

} // namespace

/** Requests and their answers. */
class WorkerCommandTest : public ToolTest {
protected:
    WorkerCommandTest() {
        m_folder.write("echo.xsl",
                       stylesheet("<xsl:output method='text'/><xsl:param name='p' select=\"'-'\"/>"
                                  "<xsl:template match='/'><xsl:value-of select='a'/>"
                                  "<xsl:value-of select=\"concat(',', $p)\"/></xsl:template>"));
    }

    /** The answers to lines of standard input, in their order. */
    std::vector<std::string> lines(const std::string& arguments, const std::string& requests) {
        std::ofstream(m_folder.path("requests"), std::ios::binary) << requests;
        const Outcome outcome = tool("worker " + arguments + " --ordered <requests");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.error, "");
        std::vector<std::string> answers;
        std::istringstream stream(outcome.output);
        for (std::string line; std::getline(stream, line);) {
            answers.push_back(line);
        }
        return answers;
    }
    std::vector<Reply> replies(const std::string& arguments, const std::string& requests) {
        std::vector<Reply> result;
        for (const std::string& line : lines(arguments, requests)) {
            result.emplace_back(line);
        }
        return result;
    }
    Reply reply(const std::string& arguments, const std::string& request) {
        auto all = replies(arguments, request + "\n");
        EXPECT_EQ(all.size(), 1U);
        return all.empty() ? Reply("{}") : std::move(all.front());
    }

    /** A talk with a worker: the script writes requests to descriptor 3, and reads from 4. */
    Outcome talk(const std::string& arguments, const std::string& script) {
        return shell("mkfifo to from; vexa-xslt worker " + arguments +
                     " <to >from & worker=$!; exec 3>to 4<from; " + script +
                     "; exec 3>&-; cat <&4; wait $worker");
    }
};

TEST_F(WorkerCommandTest, AnswersEachLineWithALine) {
    const auto answers = replies("echo.xsl", "{\"id\": 1, \"xml\": \"<a>x</a>\"}\n\n  \r\n"
                                             "{\"id\": 2, \"xml\": \"<a>\\u00e4\\n</a>\"}");
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_EQ(answers[0]["id"].GetInt(), 1);
    EXPECT_EQ(answers[0].text("result"), "x,-");
    EXPECT_GT(answers[0]["milliseconds"].GetDouble(), 0);
    EXPECT_EQ(answers[0].messages(), "");
    EXPECT_FALSE(answers[0].has("error"));
    EXPECT_FALSE(answers[0].has("output"));
    EXPECT_EQ(answers[1].text("result"), "\xC3\xA4\n,-");
    EXPECT_EQ(shell("vexa-xslt worker echo.xsl </dev/null; echo $?").output, "0\n");
}

TEST_F(WorkerCommandTest, GivesIdsBackAsTheyWere) {
    for (const char* id :
         {"1", "-0", "1.0", "1e300", "123456789012345678901234567890", "\"x\"", "\"\"", "null",
          "true", "[]", "{}", "[1,[2.50,\"\\u0000\"],{\"a\":null}]", "{\"id\":{\"xml\":7}}"}) {
        const auto answers =
            lines("echo.xsl", "{\"xml\": \"<a/>\", \"id\": " + std::string(id) + "}\n");
        ASSERT_EQ(answers.size(), 1U) << id;
        const std::string begin = "{\"id\":" + std::string(id) + ",\"result\":\",-\",";
        EXPECT_EQ(answers[0].substr(0, begin.size()), begin);
    }
    EXPECT_EQ(lines("echo.xsl", "{\"xml\": \"<a/>\"}\n")[0].rfind("{\"id\":null,\"result\"", 0),
              0U);
}

TEST_F(WorkerCommandTest, TakesFilesStylesheetsAndOutputs) {
    m_folder.write("a b.xml", "<a>file</a>");
    m_folder.write("other.xsl",
                   stylesheet("<xsl:output encoding='ISO-8859-1'/>"
                              "<xsl:template match='/'><o>\xC3\xBC</o></xsl:template>"));
    EXPECT_EQ(reply("echo.xsl", R"({"file": "a b.xml"})").text("result"), "file,-");
    EXPECT_EQ(reply("", R"({"file": "a b.xml", "stylesheet": "echo.xsl"})").text("result"),
              "file,-");
    const Reply wrong = reply("echo.xsl", R"({"xml": "<a/>", "stylesheet": "other.xsl"})");
    EXPECT_EQ(wrong.error("kind"), "Output");
    EXPECT_EQ(wrong.error("text"), "the result is in ISO-8859-1: it needs the field 'output'");
    const Reply right =
        reply("echo.xsl", R"({"xml": "<a/>", "stylesheet": "other.xsl", "output": "out.xml"})");
    EXPECT_EQ(right.text("output"), "out.xml");
    EXPECT_FALSE(right.has("result"));
    EXPECT_EQ(file("out.xml"), "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><o>\xFC</o>");
    EXPECT_EQ(reply("echo.xsl", R"({"file": "none.xml"})").error("kind"), "Input");
    EXPECT_EQ(reply("echo.xsl", R"({"xml": "<a/>", "output": "none/out"})").error("kind"),
              "Output");
}

TEST_F(WorkerCommandTest, SetsParametersForOneRequest) {
    m_folder.write(
        "types.xsl",
        stylesheet("<xsl:output method='text'/><xsl:param name='p' select=\"'-'\"/>"
                   "<xsl:param name='n:q' xmlns:n='urn:n'/><xsl:template match='/'>"
                   "<xsl:value-of select=\"concat($p, ',', $p + 1, ',', not($p), ',')\"/>"
                   "<xsl:value-of select='$n:q' xmlns:n='urn:n'/></xsl:template>"));
    const auto answers =
        replies("types.xsl -j 1 -p p=default",
                R"({"xml": "<a/>", "params": {"p": 1.5e0, "{urn:n}q": "it's \"q\""}})"
                "\n"
                R"({"xml": "<a/>", "params": {"p": "1"}})"
                "\n"
                R"({"xml": "<a/>", "params": {"p": false, "nobody": true}})"
                "\n"
                R"({"xml": "<a/>", "params": {}})"
                "\n");
    ASSERT_EQ(answers.size(), 4U);
    EXPECT_EQ(answers[0].text("result"), "1.5,2.5,false,it's \"q\"");
    EXPECT_EQ(answers[1].text("result"), "1,2,false,");
    EXPECT_EQ(answers[2].text("result"), "false,1,true,");
    EXPECT_EQ(answers[3].text("result"), "default,NaN,false,");
    EXPECT_EQ(reply("echo.xsl --expression 'p=count(//b)'", R"({"xml": "<a><b/><b/></a>"})")
                  .text("result"),
              ",2");
}

TEST_F(WorkerCommandTest, GivesMessagesWithTheAnswer) {
    m_folder.write(
        "told.xsl",
        stylesheet("<xsl:output method='text'/><xsl:template match='/'>\n<xsl:message>one"
                   "</xsl:message>\n<xsl:message>two\nlines</xsl:message>"
                   "<xsl:if test='a = 1'><xsl:message terminate='yes'>end</xsl:message>"
                   "</xsl:if></xsl:template>"));
    const Reply good = reply("told.xsl", R"({"xml": "<a/>"})");
    EXPECT_EQ(good.messages(), "one|two\nlines|");
    EXPECT_EQ(good["messages"][1]["line"].GetInt(), 3);
    EXPECT_EQ(good["messages"][1]["column"].GetInt(), 1);
    EXPECT_EQ(good["messages"][1]["uri"].GetString(), "file://" + m_folder.path("told.xsl"));
    const Reply bad = reply("told.xsl", R"({"id": 5, "xml": "<a>1</a>"})");
    EXPECT_EQ(bad["id"].GetInt(), 5);
    EXPECT_EQ(bad.error("kind"), "Terminated");
    EXPECT_EQ(bad.error("text"), "end");
    EXPECT_EQ(bad.error("uri"), "file://" + m_folder.path("told.xsl"));
    EXPECT_EQ(bad["error"]["line"].GetInt(), 4);
    EXPECT_EQ(bad.messages(), "one|two\nlines|");
    EXPECT_GT(bad["milliseconds"].GetDouble(), 0);
}

TEST_F(WorkerCommandTest, RefusesWhatIsNoRequest) {
    const std::pair<std::string, const char*> requests[] = {
        {"nonsense", "no JSON, at byte 2: "},
        {R"({"id": 7, "xml": "<a/>")", "no JSON, at byte 24: "},
        {R"({"id": 7, "xml": "<a/>"} 1)", "no JSON, at byte 26: "},
        {"{\"id\": 7, \"xml\": \"\xFF\"}", "no JSON, at byte "},
        {std::string("{\"id\": 7, \"xml\": \"<a/>\"}\0x", 26), "no JSON, at byte 25: U+0000"},
        {std::string(1'000'000, '['), "no JSON, at byte 1000001: "},
        {"[1]", "a request is an object, and not an array"},
        {"5", "a request is an object, and not a number"},
        {R"({"id": 7, "xml": "<a/>", "sheet": "x"})", "there is no field 'sheet'"},
        {R"({"sheet": {"id": 8}, "id": 7, "xml": "<a/>"})", "there is no field 'sheet'"},
        {R"({"id": 7, "xml": "<a/>", "xml": "<b/>"})", "the field 'xml' is there twice"},
        {R"({"id": 7})", "one of the fields 'xml' and 'file' is needed"},
        {R"({"id": 7, "xml": "<a/>", "file": "a"})",
         "one of the fields 'xml' and 'file' is needed"},
        {R"({"id": 7, "xml": 5})", "the value of 'xml' cannot be a number"},
        {R"({"id": 7, "xml": null})", "the value of 'xml' cannot be null"},
        {R"({"id": 7, "xml": "<a/>", "output": ["x"]})",
         "the value of 'output' cannot be an array"},
        {R"({"id": 7, "xml": "<a/>", "params": 5})", "the value of 'params' cannot be a number"},
        {R"({"id": 7, "xml": "<a/>", "params": {"p": null}})", "the value of 'p' cannot be null"},
        {R"({"id": 7, "xml": "<a/>", "params": {"p": {"q": 1}}})",
         "the value of 'p' cannot be an object"},
        {R"({"id": 7, "xml": "<a/>", "params": {"p": 1e-400}})",
         "the number of 'p' is out of range"},
        {R"({"id": 7, "xml": "<a/>", "params": {"a b": "x"}})", ""},
        {R"({"id": 7, "file": "-"})", "standard input has the requests"},
        {R"({"id": 7, "xml": "<a/>", "output": "-"})", "standard output has the answers"},
    };
    for (const auto& [request, text] : requests) {
        const Reply answer = reply("echo.xsl", request);
        const std::string shown = request.substr(0, 80);
        EXPECT_EQ(answer.error("kind"), "Usage") << shown;
        EXPECT_EQ(answer.error("text").rfind(text, 0), 0U) << shown << answer.error("text");
        const bool hasId = request.find("\"id\": 7") != std::string::npos;
        EXPECT_EQ(answer["id"].IsInt() && answer["id"].GetInt() == 7, hasId) << shown;
        EXPECT_EQ(answer["id"].IsNull(), !hasId) << shown;
    }
    EXPECT_EQ(reply("", R"({"xml": "<a/>"})").error("text"),
              "the field 'stylesheet' is needed, as the command line names none");
    // What follows is not harmed.
    EXPECT_EQ(replies("echo.xsl", "{\n{\"xml\":\"<a>1</a>\"}\n")[1].text("result"), "1,-");
}

TEST_F(WorkerCommandTest, TakesALineOfTwentyMegabytes) {
    const std::string large(20'000'000, 'x');
    const auto answers =
        replies("echo.xsl", "{\"id\": 1, \"xml\": " + quoted("<a>" + large + "</a>") +
                                "}\n{\"id\": 2, \"xml\": \"<a>2</a>\"}\n");
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_TRUE(answers[0].text("result") == large + ",-");
    EXPECT_EQ(answers[1].text("result"), "2,-");
}

TEST_F(WorkerCommandTest, AnswersAtOnce) {
    const Outcome outcome =
        talk("echo.xsl", "for i in 1 2 3; do echo \"{\\\"xml\\\": \\\"<a>$i</a>\\\"}\" >&3; "
                         "read -r -t 20 line <&4; echo \"got $line\" | cut -c1-35; done");
    EXPECT_EQ(outcome.output, "got {\"id\":null,\"result\":\"1,-\",\"mill\n"
                              "got {\"id\":null,\"result\":\"2,-\",\"mill\n"
                              "got {\"id\":null,\"result\":\"3,-\",\"mill\n");
}

TEST_F(WorkerCommandTest, AnswersAsTheyAreReadyOrInOrder) {
    const std::string requests =
        R"(echo '{"id": 1, "file": "pipe"}' >&3; echo '{"id": 2, "xml": "<a>2</a>"}' >&3; )";
    // Waits until the first one reads.
    const std::string release = "exec 5>pipe; echo '<a>1</a>' >&5; exec 5>&-";
    const Outcome unordered =
        talk("echo.xsl -j 2", "mkfifo pipe; " + requests +
                                  "read -r -t 20 line <&4; echo \"$line\" | cut -c1-7; " + release);
    EXPECT_EQ(unordered.output.rfind("{\"id\":2\n{\"id\":1,\"result\":\"1,-\"", 0), 0U)
        << unordered.output;
    shell("rm to from pipe");
    const Outcome ordered =
        talk("echo.xsl -j 2 --ordered",
             "mkfifo pipe; " + requests + "read -r -t 1 line <&4 && echo early; " + release);
    EXPECT_EQ(ordered.output.rfind("{\"id\":1,", 0), 0U) << ordered.output;
    EXPECT_NE(ordered.output.find("\n{\"id\":2,"), std::string::npos);
}

TEST_F(WorkerCommandTest, CompilesAgainWhatHasChanged) {
    m_folder.write("part.xsl", "<xsl:stylesheet version='1.0' "
                               "xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
                               "<xsl:template match='a'>old</xsl:template></xsl:stylesheet>");
    m_folder.write("main.xsl", stylesheet("<xsl:output method='text'/>"
                                          "<xsl:include href='part.xsl'/>"));
    const std::string ask = "echo '{\"xml\": \"<a/>\", \"stylesheet\": \"main.xsl\"}' >&3; "
                            "read -r -t 20 line <&4; echo \"$line\" | cut -d'\"' -f6; ";
    const Outcome outcome =
        talk("-j 1", ask + ask + "sed -i s/old/new/ part.xsl; " + ask +
                         "touch -d '-1 day' other; sed s/new/two/ part.xsl >other; touch -r "
                         "part.xsl other; mv other part.xsl; " +
                         ask + "rm part.xsl; " + ask + "true");
    EXPECT_EQ(outcome.output, "old\nold\nnew\ntwo\nkind\n");
}

/** Compiling gives a warning; it is there when the stylesheet was compiled for this request. */
TEST_F(WorkerCommandTest, KeepsTheStylesheetsThatWereUsedLast) {
    constexpr int COUNT = 65;
    for (int i = 1; i <= COUNT; ++i) {
        m_folder.write("s" + std::to_string(i) + ".xsl",
                       stylesheet("<xsl:template match='/'><xsl:variable name='a'/>"
                                  "<xsl:variable name='a'/></xsl:template>"));
    }
    shell("touch -d '-10 seconds' *.xsl");
    std::string requests;
    const auto add = [&](int number) {
        requests +=
            "{\"xml\": \"<a/>\", \"stylesheet\": \"s" + std::to_string(number) + ".xsl\"}\n";
    };
    for (int i = 1; i < COUNT; ++i) {
        add(i);
    }
    add(1);     // kept
    add(COUNT); // takes the place of 2
    add(1);
    add(3);
    add(2);
    const auto answers = replies("-j 1", requests);
    ASSERT_EQ(answers.size(), COUNT + 4U);
    std::string compiled;
    for (const Reply& answer : answers) {
        compiled += answer.messages().empty() ? '-' : 'c';
    }
    EXPECT_EQ(compiled, std::string(COUNT - 1, 'c') + "-c--c");
}

/** The request waits for a pipe, so that its process can be caught there. */
TEST_F(WorkerCommandTest, AnswersForARequestThatEndsItsProcess) {
    const std::pair<const char*, const char*> crashes[] = {
        {"SEGV", "the engine crashed (SIGSEGV)"},
        {"KILL", "killed from outside (SIGKILL), perhaps because memory ran out"}};
    for (const auto& [signal, cause] : crashes) {
        const Outcome outcome = talk(
            "echo.xsl -j 1",
            "rm -f pipe; mkfifo pipe; echo '{\"id\": [1.50], \"file\": \"pipe\"}' >&3; echo "
            "'{\"id\": 2, \"xml\": \"<a>2</a>\"}' >&3; exec 5>pipe; kill -" +
                std::string(signal) + " $(cat /proc/$worker/task/$worker/children); exec 5>&-");
        std::istringstream stream(outcome.output);
        std::string first;
        std::string second;
        std::getline(stream, first);
        std::getline(stream, second);
        EXPECT_EQ(first.rfind("{\"id\":[1.50],\"error\":", 0), 0U) << outcome.output;
        const Reply lost(first);
        EXPECT_EQ(lost.error("kind"), "Crash");
        EXPECT_EQ(lost.error("text"), cause);
        EXPECT_EQ(lost.messages(), "");
        EXPECT_EQ(Reply(second).text("result"), "2,-");
        shell("rm to from");
    }
}

TEST_F(WorkerCommandTest, TakesATextForUnicode) {
    const std::string content = "?><a>\xC3\xBC\xCE\xB1</a>";
    for (const std::string& declaration : std::vector<std::string>{
             "", " encoding='ISO-8859-1'", " encoding=\"UTF-16\" standalone='yes'",
             "\nencoding = 'utf-8'"}) {
        for (const char* mark : {"", "\xEF\xBB\xBF"}) {
            const Reply answer = reply(
                "echo.xsl",
                "{\"xml\": " + quoted(mark + ("<?xml version='1.0'" + declaration) + content) +
                    "}");
            EXPECT_EQ(answer.text("result"), "\xC3\xBC\xCE\xB1,-") << declaration;
        }
    }
    // Only in the declaration.
    EXPECT_EQ(
        reply("echo.xsl", "{\"xml\": " + quoted("<a><![CDATA[<?xml encoding='x'?>]]></a>") + "}")
            .text("result"),
        "<?xml encoding='x'?>,-");
    EXPECT_EQ(reply("echo.xsl", "{\"xml\": " + quoted("<?xml version='1.0' encoding='x'?>\n<a>") +
                                    "}")["error"]["line"]
                  .GetInt(),
              2);
}

TEST_F(WorkerCommandTest, AnswersInOrderWhateverEndsTheProcesses) {
    constexpr int COUNT = 60;
    std::string requests;
    for (int i = 1; i <= COUNT; ++i) {
        requests += "{\"id\": " + std::to_string(i) + ", \"file\": \"" +
                    (i % 4 == 0 ? "pipe" : "one.xml") + "\"}\n";
    }
    m_folder.write("one.xml", "<a>1</a>");
    m_folder.write("requests", requests);
    // Each process that waits for the pipe is killed.
    const Outcome outcome = shell(
        "mkfifo pipe; vexa-xslt worker echo.xsl -j 3 --ordered <requests >answers & "
        "worker=$!; while [ -d /proc/$worker ]; do for child in $(cat "
        "/proc/$worker/task/$worker/children); do [ \"$(cat /proc/$child/wchan 2>/dev/null)\" "
        "= wait_for_partner ] && kill -9 $child; done; sleep 0.02; done 2>/dev/null; wait "
        "$worker; echo $?; cat answers");
    std::istringstream lines(outcome.output);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "0");
    for (int i = 1; i <= COUNT; ++i) {
        ASSERT_TRUE(std::getline(lines, line)) << i;
        const Reply answer(line);
        EXPECT_EQ(answer["id"].GetInt(), i);
        EXPECT_EQ(answer.has("error"), i % 4 == 0) << line;
    }
    EXPECT_FALSE(std::getline(lines, line)) << line;
}

TEST_F(WorkerCommandTest, HoldsTheLimitsForEachRequest) {
    m_folder.write("deep.xsl",
                   stylesheet("<xsl:template match='/' name='deep'><xsl:if test='a = 1'>"
                              "<xsl:call-template name='deep'/></xsl:if></xsl:template>"));
    const auto answers = replies("deep.xsl --max-depth 500 --max-seconds 20",
                                 "{\"xml\": \"<a>1</a>\"}\n{\"xml\": \"<a>2</a>\"}\n");
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_EQ(answers[0].error("kind"), "Limit");
    EXPECT_FALSE(answers[1].has("error"));
    // What the process itself does not notice.
    const Outcome late =
        talk("echo.xsl -j 1 --max-seconds 1",
             "mkfifo pipe; echo '{\"id\": 1, \"file\": \"pipe\"}' >&3; exec 5>pipe; "
             "echo '{\"id\": 2, \"xml\": \"<a>2</a>\"}' >&3; read -r -t 20 line <&4; echo "
             "\"$line\"; read -r -t 20 line <&4; echo \"$line\"; exec 5>&-");
    std::istringstream stream(late.output);
    std::string first;
    std::string second;
    std::getline(stream, first);
    std::getline(stream, second);
    EXPECT_EQ(Reply(first).error("kind"), "Limit") << late.output;
    EXPECT_EQ(Reply(second).text("result"), "2,-");
}

TEST_F(WorkerCommandTest, WaitsForAReaderThatDoesNotRead) {
    for (const char* options : {"", "--ordered"}) {
        std::ofstream requests(m_folder.path("requests"));
        constexpr int COUNT = 20'000;
        const std::string text(1000, 'x');
        for (int i = 0; i < COUNT; ++i) {
            requests << R"({"xml": "<a>)" << text << "</a>\"}\n";
        }
        requests.close();
        const Outcome outcome = shell(
            "rm -f from; mkfifo from; vexa-xslt worker echo.xsl -j 2 " + std::string(options) +
            " <requests >from & worker=$!; exec 4<from; sleep 2; "
            "sed -n 's/^pos:\t//p' /proc/$worker/fdinfo/0; "
            "sed -n 's/^VmRSS:\t *\\([0-9]*\\) kB/\\1/p' /proc/$worker/status; wc -l <&4; wait");
        std::istringstream numbers(outcome.output);
        std::size_t position = 0;
        std::size_t kilobytes = 0;
        int answers = 0;
        numbers >> position >> kilobytes >> answers;
        EXPECT_GT(position, 0U);
        EXPECT_LT(position, 5'000'000U);
        if (!isUnderAMemoryChecker()) {
            EXPECT_LT(kilobytes, 60'000U);
        }
        EXPECT_EQ(answers, COUNT);
    }
}

TEST_F(WorkerCommandTest, EndsAtOnceWhenItIsAsked) {
    const Outcome outcome =
        shell("mkfifo to pipe; exec 5<>pipe; vexa-xslt worker echo.xsl -j 1 <to & worker=$!; exec "
              "3>to; echo '{\"file\": \"pipe\"}' >&3; sleep 0.5; child=$(cat "
              "/proc/$worker/task/$worker/children); kill -TERM $worker; wait $worker; kill -l $?; "
              "for i in $(seq 100); do [ -d /proc/$child ] || break; sleep 0.05; done; "
              "[ -d /proc/$child ] && echo left");
    EXPECT_EQ(outcome.output, "TERM\n");
}

TEST_F(WorkerCommandTest, IsUnderTheAccessPolicy) {
    m_folder.write("net.xsl", stylesheet("<xsl:template match='/'><xsl:copy-of "
                                         "select=\"document('http://localhost:1/x')\"/>"
                                         "</xsl:template>"));
    EXPECT_EQ(reply("net.xsl", R"({"xml": "<a/>"})").error("kind"), "Denied");
    m_folder.write("further.xsl",
                   stylesheet("<xsl:template match='/'><e:document href='d.txt' method='text' "
                              "xmlns:e='http://exslt.org/common' "
                              "xsl:extension-element-prefixes='e'>further</e:document>"
                              "</xsl:template>"));
    EXPECT_EQ(reply("further.xsl", R"({"xml": "<a/>"})").error("kind"), "Denied");
    EXPECT_FALSE(reply("further.xsl --documents docs", R"({"xml": "<a/>"})").has("error"));
    EXPECT_EQ(file("docs/d.txt"), "further");
}

TEST_F(WorkerCommandTest, TellsWhatIsWrongWithTheCommandLine) {
    expectFailure(tool("worker none.xsl </dev/null"), 1, "none.xsl: cannot open: ");
    m_folder.write("bad.xsl", "<xsl:stylesheet");
    expectFailure(tool("worker bad.xsl </dev/null"), 1, "bad.xsl:1:");
    expectFailure(tool("worker - </dev/null"), 2, "-: standard input has the requests");
    expectFailure(tool("worker echo.xsl -j 0"), 2, "--jobs: expected an integer");
    expectFailure(tool("worker echo.xsl more"), 2, "unexpected argument 'more'");
    const Outcome full = shell("echo '{\"xml\": \"<a/>\"}' | vexa-xslt worker echo.xsl >/dev/full");
    EXPECT_EQ(full.error, "vexa-xslt: standard output: No space left on device\n");
}
