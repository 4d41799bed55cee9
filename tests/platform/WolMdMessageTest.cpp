#include <vexa/WolMdMessage.h>

#include "support/Catalogue.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>
#include <thread>
#include <unicode/uclean.h>
#include <vector>

namespace {

std::string text(unsigned long id, const char* language, const char* fallback = "en") {
    I18NString out("previous text");
    WolMdMessage(id).format(language, fallback, out);
    return out.c_str();
}

constexpr unsigned long TOTAL = 0xA2E79FA6;

} // namespace

TEST(WolMdMessage, EveryLanguageHasTheSameNineteenMessages) {
    const auto english = catalogueTexts("en");
    EXPECT_EQ(english.size(), 19U);
    for (const std::string& language : catalogueLanguages()) {
        const auto texts = catalogueTexts(language);
        EXPECT_EQ(texts.size(), english.size()) << language;
        for (const auto& [id, expected] : texts) {
            EXPECT_EQ(english.count(id), 1U) << language;
            EXPECT_NE(expected, "") << language;
            EXPECT_EQ(text(id, language.c_str(), nullptr), expected) << language;
        }
    }
}

TEST(WolMdMessage, HasAllDocumentedLanguages) {
    const auto languages = catalogueLanguages();
    for (const char* language : {"en", "de", "fr", "es", "it", "el", "ja", "zh"}) {
        EXPECT_EQ(languages.count(language), 1U) << language;
    }
}

TEST(WolMdMessage, IsEmptyForAnUnknownIdentifier) {
    EXPECT_EQ(text(0, "en"), "");
    EXPECT_EQ(text(1, "de"), "");
    EXPECT_EQ(text(0xFFFFFFFF, "en"), "");
}

TEST(WolMdMessage, UsesTheFallbackLanguageIfTheLanguageIsUnknown) {
    EXPECT_EQ(text(TOTAL, "xx"), "Total");
    EXPECT_EQ(text(TOTAL, "xx", "de_AT"), "Summe");
    EXPECT_EQ(text(TOTAL, "xx", "yy"), "");
    EXPECT_EQ(text(TOTAL, nullptr, nullptr), "");
}

namespace {

/** How many allocations of ICU succeed before one fails; -1: all succeed. */
int g_allocationsLeft = -1;

bool isFailing() {
    return g_allocationsLeft >= 0 && g_allocationsLeft-- == 0;
}

void useFailingMemory() {
    UErrorCode status = U_ZERO_ERROR;
    u_setMemoryFunctions(
        nullptr, [](const void*, std::size_t size) { return isFailing() ? nullptr : malloc(size); },
        [](const void*, void* block, std::size_t size) {
            return isFailing() ? nullptr : realloc(block, size);
        },
        [](const void*, void* block) { free(block); }, &status);
}

/** Whether the message is found or std::bad_alloc is thrown. */
bool returnsTextOrThrows() {
    try {
        return text(TOTAL, "de") == "Summe";
    } catch (const std::bad_alloc&) {
        return true;
    }
}

} // namespace

TEST(WolMdMessage, ReportsOutOfMemoryInsteadOfAMissingText) {
    ::testing::FLAGS_gtest_death_test_style = "fast";
    for (int left = 0; left < 20; ++left) {
        const auto formatTwice = [left] {
            useFailingMemory();
            g_allocationsLeft = left;
            const bool isFirstCorrect = returnsTextOrThrows();
            g_allocationsLeft = -1;
            std::_Exit(isFirstCorrect && returnsTextOrThrows() ? 0 : 1);
        };
        EXPECT_EXIT(formatTwice(), ::testing::ExitedWithCode(0), "") << left;
    }
}

TEST(WolMdMessage, CanBeFormattedInManyThreadsAtTheSameTime) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int k = 0; k < 200; ++k) {
                EXPECT_EQ(text(TOTAL, "de"), "Summe");
                EXPECT_EQ(text(TOTAL, "xx"), "Total");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}
