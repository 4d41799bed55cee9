#include "ToolTest.h"

/** What an error suggests to do next. */
class SuggestionTest : public ToolTest {
protected:
    /** The suggestion in the one line of an error; empty if there is none. */
    std::string suggested(const std::string& arguments, int status) {
        const auto outcome = tool(arguments);
        expectFailure(outcome, status, "");
        constexpr const char* BEGIN = "did you mean '";
        const auto begin = outcome.error.find(BEGIN);
        if (begin == std::string::npos) {
            return "";
        }
        const std::string rest = outcome.error.substr(begin + std::string(BEGIN).size());
        return rest.substr(0, rest.find("'?"));
    }
};

TEST_F(SuggestionTest, NamesTheCommandThatWasMeant) {
    EXPECT_EQ(suggested("tranform ok.xsl ok.xml", 2), "transform");
    EXPECT_EQ(suggested("trasnfrom", 2), "transform");
    EXPECT_EQ(suggested("trans ok.xsl", 2), "transform");
    EXPECT_EQ(suggested("Chain", 2), "chain");
    EXPECT_EQ(suggested("chian", 2), "chain");
    EXPECT_EQ(suggested("xpth", 2), "xpath");
    EXPECT_EQ(suggested("tets", 2), "test");
    EXPECT_EQ(suggested("nonsense", 2), "");
    EXPECT_EQ(suggested("tr", 2), "");
}

TEST_F(SuggestionTest, NamesTheOptionThatWasMeant) {
    EXPECT_EQ(suggested("transform ok.xsl ok.xml --timming", 2), "--timing");
    EXPECT_EQ(suggested("transform --timming", 2), "--timing");
    EXPECT_EQ(suggested("transform --outptu result.xml ok.xsl ok.xml", 2), "--output");
    EXPECT_EQ(suggested("transform --out=result.xml ok.xsl ok.xml", 2), "--output");
    EXPECT_EQ(suggested("xpath 1 ok.xml -quiet", 2), "--quiet");
    EXPECT_EQ(suggested("--verison", 2), "--version");
    EXPECT_EQ(suggested("transform ok.xsl ok.xml --nonsense", 2), "");
    EXPECT_EQ(suggested("xpath 1 ok.xml --output=x", 2), "");
}

TEST_F(SuggestionTest, NamesTheFileThatWasMeant) {
    shell("mkdir 'a folder'; cp ok.xml orders.xml; cp ok.xml 'a folder/Orders.xml'");
    EXPECT_EQ(suggested("transform ok.xsl oders.xml", 1), "orders.xml");
    EXPECT_EQ(suggested("transform ok.xsl ordres.xml", 1), "orders.xml");
    EXPECT_EQ(suggested("transform ok.xsl ORDERS.XML", 1), "orders.xml");
    EXPECT_EQ(suggested("xpath 1 orders.xm", 1), "orders.xml");
    EXPECT_EQ(suggested("xpath 1 './order.xml'", 1), "./orders.xml");
    EXPECT_EQ(suggested("chain 'a folder/orders.xml' ok.xsl", 1), "a folder/Orders.xml");
    EXPECT_EQ(suggested("transform OK.xsl ok.xml", 1), "ok.xsl");
    EXPECT_EQ(suggested("transform ok.xsl none.xml", 1), "");
    EXPECT_EQ(suggested("transform ok.xsl no.xml", 1), "") << "one of two letters is not near";
    EXPECT_EQ(suggested("xpath 1 'a foldr/Orders.xml'", 1), "");
}

TEST_F(SuggestionTest, NamesTheNearestFileAndOfTwoTheFirstInTheAlphabet) {
    shell("touch ordersAB.xml orders1.xml ordersA.xml orders2.xml");
    EXPECT_EQ(suggested("xpath 1 ordersABC.xml", 1), "ordersAB.xml");
    EXPECT_EQ(suggested("xpath 1 orders.xml", 1), "orders1.xml");
}

TEST_F(SuggestionTest, NamesNothingThatIsNoFile) {
    shell("mkdir orders.xml; ln -s nowhere reports.xml; touch $'invoices\\e[2J.xml' "
          "$'tickets\\x7F.xml'");
    EXPECT_EQ(suggested("xpath 1 order.xml", 1), "");
    EXPECT_EQ(suggested("xpath 1 reports.xml", 1), "");
    EXPECT_EQ(suggested("xpath 1 $'invoices\\e[2K.xml'", 1), "");
    EXPECT_EQ(suggested("xpath 1 tickets.xml", 1), "");
}

TEST_F(SuggestionTest, AsksNothingOfAFolderThatOthersMayNotRead) {
    // root may read everything, unless it gives that right up.
    shell("mkdir secret; cp ok.xml secret/orders.xml; chmod 111 secret");
    const auto outcome =
        shell("[ $(id -u) = 0 ] && drop='setpriv --bounding-set=-dac_override,-dac_read_search'; "
              "$drop vexa-xslt xpath 1 secret/order.xml");
    shell("chmod 700 secret");
    expectFailure(outcome, 1, "secret/order.xml: cannot open: No such file or directory\n");
}

TEST_F(SuggestionTest, SaysWhatElseIsWrongWithACommandLine) {
    expectFailure(tool(""), 2,
                  "a command is missing: transform, chain, xpath, batch, records, worker, "
                  "profile or test (",
                  "see 'vexa-xslt --help'");
    expectFailure(tool("help"), 2,
                  "unknown command 'help'; the commands are transform, chain, xpath, batch, "
                  "records, worker, profile and test (",
                  "see 'vexa-xslt --help'");
    expectFailure(tool("help chain"), 2, "unknown command 'help'", "see 'vexa-xslt chain --help'");
    expectFailure(tool("--quiet transform ok.xsl ok.xml"), 2,
                  "--quiet: this option belongs after the command");
    expectFailure(tool("''"), 2, "unknown command ''; ");
    expectFailure(tool("-- transform"), 2, "a command is missing: ");
    expectFailure(tool("transform -- ok.xsl ok.xml more"), 2, "unexpected argument 'more'");
    expectFailure(tool("transform ok.xsl ok.xml more"), 2, "unexpected argument 'more'");
    expectFailure(tool("transform ok.xsl ok.xml -o"), 2, "--output: OUTPUT is missing");
    expectFailure(tool("transform ok.xsl ok.xml -p a=b -p"), 2, "--param: NAME=VALUE is missing");
    expectFailure(tool("transform ok.xsl ok.xml -o a -o b"), 2, "--output: given more than once");
    expectFailure(tool("transform ok.xsl ok.xml --timing=x"), 2, "--timing: no value expected");
    expectFailure(tool("xpath '-//a' ok.xml"), 2, "unknown option '-//a'", "belongs after --");
    EXPECT_EQ(tool("xpath -- '-count(//a)' ok.xml").output, "-1\n");
    expectFailure(tool("transform ok.xsl ok.xml -p title"), 2,
                  "-p title: expected NAME=VALUE, such as title=Orders");
}
