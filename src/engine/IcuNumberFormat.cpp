#include "engine/IcuNumberFormat.h"

#include <cmath>
#include <new>

#include <unicode/dcfmtsym.h>
#include <xalanc/PlatformSupport/XalanDecimalFormatSymbols.hpp>

using xalanc::XalanDecimalFormatSymbols;
using xalanc::XalanDOMString;

namespace {

/** A stylesheet may compute its patterns. */
constexpr std::size_t MOST_FORMATS = 64;

icu::UnicodeString toUnicode(const XalanDOMString& text) {
    return icu::UnicodeString(text.c_str(), static_cast<std::int32_t>(text.length()));
}

/** Those of the locale, with what the stylesheet can set. */
std::unique_ptr<icu::DecimalFormatSymbols> toIcu(const XalanDecimalFormatSymbols& symbols,
                                                 UErrorCode& status) {
    using Symbols = icu::DecimalFormatSymbols;
    auto result = std::make_unique<Symbols>(status);
    result->setSymbol(Symbols::kZeroDigitSymbol, symbols.getZeroDigit());
    result->setSymbol(Symbols::kGroupingSeparatorSymbol, symbols.getGroupingSeparator());
    result->setSymbol(Symbols::kDecimalSeparatorSymbol, symbols.getDecimalSeparator());
    result->setSymbol(Symbols::kPerMillSymbol, symbols.getPerMill());
    result->setSymbol(Symbols::kPercentSymbol, symbols.getPercent());
    result->setSymbol(Symbols::kDigitSymbol, symbols.getDigit());
    result->setSymbol(Symbols::kPatternSeparatorSymbol, symbols.getPatternSeparator());
    result->setSymbol(Symbols::kInfinitySymbol, toUnicode(symbols.getInfinity()));
    result->setSymbol(Symbols::kNaNSymbol, toUnicode(symbols.getNaN()));
    result->setSymbol(Symbols::kMinusSignSymbol, symbols.getMinusSign());
    result->setSymbol(Symbols::kCurrencySymbol, toUnicode(symbols.getCurrencySymbol()));
    result->setSymbol(Symbols::kIntlCurrencySymbol,
                      toUnicode(symbols.getInternationalCurrencySymbol()));
    result->setSymbol(Symbols::kMonetarySeparatorSymbol, symbols.getMonetaryDecimalSeparator());
    return result;
}

/** @return null if ICU refuses the pattern */
std::unique_ptr<icu::DecimalFormat> makeFormat(const XalanDOMString& pattern,
                                               const XalanDecimalFormatSymbols* symbols) {
    const XalanDecimalFormatSymbols defaultSymbols(engineMemory());
    XalanDOMString standardPattern(pattern, engineMemory());
    if (symbols) {
        standardPattern.clear();
        xalanc::ICUFormatNumberFunctor::UnlocalizePatternFunctor unlocalize(*symbols);
        unlocalize(pattern, standardPattern, engineMemory());
    }
    UErrorCode status = U_ZERO_ERROR;
    auto format = std::make_unique<icu::DecimalFormat>(status);
    format->adoptDecimalFormatSymbols(toIcu(symbols ? *symbols : defaultSymbols, status).release());
    format->applyPattern(toUnicode(standardPattern), status);
    if (status == U_MEMORY_ALLOCATION_ERROR) {
        throw std::bad_alloc();
    }
    return U_SUCCESS(status) ? std::move(format) : nullptr;
}

} // namespace

void IcuNumberFormat::operator()(xalanc::XPathExecutionContext& executionContext, double number,
                                 const XalanDOMString& pattern,
                                 const XalanDecimalFormatSymbols* symbols, XalanDOMString& result,
                                 const xalanc::XalanNode* context,
                                 const xalanc::Locator* locator) const {
    const icu::DecimalFormat* const format =
        std::isfinite(number) ? find(pattern, symbols) : nullptr;
    if (!format) {
        // The engine's own knows what to write for these, and what to report.
        m_functor.get()(executionContext, number, pattern, symbols, result, context, locator);
        return;
    }
    icu::UnicodeString text;
    format->format(number, text);
    result.assign(text.getBuffer(), static_cast<XalanDOMString::size_type>(text.length()));
}

const icu::DecimalFormat* IcuNumberFormat::find(const XalanDOMString& pattern,
                                                const XalanDecimalFormatSymbols* symbols) const {
    Key key(symbols, std::u16string(pattern.c_str(), pattern.length()));
    const auto known = m_formats.find(key);
    if (known != m_formats.end()) {
        return known->second.get();
    }
    if (m_formats.size() == MOST_FORMATS) {
        m_formats.clear();
    }
    return m_formats.emplace(std::move(key), makeFormat(pattern, symbols)).first->second.get();
}
