#include <nrb/NRBMessage.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace {

/** A message with its texts in a map. It records the languages that are looked up. */
class TestMessage : public NRBMessage {
public:
    explicit TestMessage(std::map<std::string, std::string> texts) : m_texts(std::move(texts)) {}

    std::string in(const char* language, const char* fallback) const {
        I18NString out("previous text");
        format(language, fallback, out);
        return out.c_str();
    }

    mutable std::string m_strLookups;

private:
    bool findText(const char* locale, I18NString& out) const override {
        m_strLookups += std::string(locale) + " ";
        const auto found = m_texts.find(locale);
        if (found == m_texts.end()) {
            return false;
        }
        out = found->second.c_str();
        return true;
    }

    std::map<std::string, std::string> m_texts;
};

const std::map<std::string, std::string> TEXTS = {
    {"en", "page"}, {"de", "Seite"}, {"el", "\xCF\x83\xCE\xB5\xCE\xBB\xCE\xAF\xCE\xB4\xCE\xB1"}};

} // namespace

TEST(NRBMessage, UsesTheRequestedLanguage) {
    const TestMessage message(TEXTS);
    EXPECT_EQ(message.in("de", "en"), "Seite");
    EXPECT_EQ(message.in("el", "en"), TEXTS.at("el"));
    EXPECT_EQ(message.in("en", "en"), "page");
}

TEST(NRBMessage, AcceptsRegionsAndAllSpellingsOfALanguage) {
    const TestMessage message(TEXTS);
    for (const char* german : {"de_AT", "de-AT", "DE", "De_at", "de_DE_PREEURO", "de-Latn-CH",
                               "de_DE@collation=phonebook", "de_DE.UTF-8"}) {
        EXPECT_EQ(message.in(german, "en"), "Seite") << german;
    }
}

TEST(NRBMessage, TriesParentsBeforeTheFallbackLanguage) {
    const TestMessage message(std::map<std::string, std::string>{});
    message.in("zh-Hant-TW", "de_CH");
    EXPECT_EQ(message.m_strLookups, "zh_Hant_TW zh_Hant zh de_CH de ");
}

TEST(NRBMessage, LooksUpLanguagesInCanonicalForm) {
    const TestMessage message(std::map<std::string, std::string>{});
    for (const char* language : {"de_", "DE.UTF-8", "de@collation=phonebook", "de__"}) {
        message.m_strLookups.clear();
        message.in(language, nullptr);
        EXPECT_EQ(message.m_strLookups, "de ") << language;
    }
    message.m_strLookups.clear();
    message.in("zh_TW.Big5", nullptr);
    EXPECT_EQ(message.m_strLookups, "zh_TW zh ");
}

TEST(NRBMessage, FallsBackIfTheLanguageIsUnknownOrEmpty) {
    const TestMessage message(TEXTS);
    for (const char* unknown : {"xx", "tlh_KX", "", "42", "no language at all", "_"}) {
        EXPECT_EQ(message.in(unknown, "en"), "page") << unknown;
    }
    EXPECT_EQ(message.in(nullptr, "en"), "page");
    EXPECT_EQ(message.in(std::string(10'000, 'x').c_str(), "en"), "page");
}

TEST(NRBMessage, IsEmptyIfNoLanguageHasAText) {
    const TestMessage message(TEXTS);
    EXPECT_EQ(message.in("xx", "yy"), "");
    EXPECT_EQ(message.in("xx", ""), "");
    EXPECT_EQ(message.in(nullptr, nullptr), "");
}

TEST(NRBMessage, IgnoresTheLocaleOfTheProcess) {
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    const TestMessage message(std::map<std::string, std::string>{{"de", "Seite"}});
    EXPECT_EQ(message.in("", ""), "");
    EXPECT_EQ(message.in("xx", nullptr), "");
    unsetenv("LC_ALL");
}
