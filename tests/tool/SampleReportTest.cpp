#include "ToolTest.h"

#include <cstdlib>
#include <regex>

/** The report that `./dev run` prints, in the reader's language. */
class SampleReportTest : public ToolTest {
protected:
    std::string page(const std::string& options) {
        const auto outcome = tool("transform '" + projectFile("samples/report-localised.xsl") +
                                  "' '" + projectFile("samples/orders.xml") + "' " + options);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.error, "");
        return outcome.output;
    }

    static bool contains(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(SampleReportTest, HasGreekHeadingsInGreek) {
    const std::string greek = page("-p lang=el");
    EXPECT_TRUE(contains(greek, "\xCE\x92\xCE\xB9\xCE\xB2\xCE\xBB\xCE\xAF\xCE\xBF "
                                "\xCF\x80\xCE\xB1\xCF\x81\xCE\xB1\xCE\xB3\xCE\xB3"
                                "\xCE\xB5\xCE\xBB\xCE\xB9\xCF\x8E\xCE\xBD 2025</h1>"));
    EXPECT_FALSE(contains(greek, "Order book"));
}

TEST_F(SampleReportTest, HasEnglishHeadingsInAnUnknownLanguageAndInNone) {
    for (const char* options : {"", "-p lang=xx", "-p lang="}) {
        EXPECT_TRUE(contains(page(options), "Order book 2025</h1>")) << options;
    }
}

TEST_F(SampleReportTest, HasGermanHeadingsForAustria) {
    EXPECT_TRUE(contains(page("-p lang=de_AT"), "Auftragsbuch 2025</h1>"));
}

/** The figure is the sum of the order book itself, counted here without any engine. */
TEST_F(SampleReportTest, CountsTheOrders) {
    const std::string orders = readFile(projectFile("samples/orders.xml"));
    const std::regex order("<order ");
    const auto count = std::distance(std::sregex_iterator(orders.begin(), orders.end(), order),
                                     std::sregex_iterator());
    EXPECT_EQ(count, 240);
    EXPECT_TRUE(contains(page(""), ">" + std::to_string(count) + "<"));
}

TEST_F(SampleReportTest, TellsTheTimeOfDayAndHowLongItTook) {
    std::smatch found;
    const std::string text = page("");
    ASSERT_TRUE(std::regex_search(
        text, found,
        std::regex("Created at ([0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}) &middot; Elapsed time "
                   "([0-9]+\\.[0-9]{3})")));
    EXPECT_LT(std::atof(found[2].str().c_str()), 600.0);
}
