/**
 * @file
 * A message with texts in several languages.
 */
#pragma once

#include <nrb/I18NString.h>
#include <nrb/NRBExport.h>

/**
 * Base class of messages from a catalogue. It selects the language; a derived class provides the
 * texts.
 *
 * Ownership: a value type without a state of its own.
 *
 * Threads: any number of threads may call format() at the same time if findText() of the derived
 * class allows it.
 *
 * Exceptions: what findText() throws, and std::bad_alloc.
 */
class NRB_EXPORT NRBMessage {
public:
    virtual ~NRBMessage();

    /**
     * Writes the text of the message into `out`.
     *
     * The languages are tried in this order: `language`, its parents (de_AT, then de), then
     * `fallbackLanguage` and its parents. A language is an ICU locale identifier or a BCP 47 tag,
     * in upper or lower case: "de_AT", "de-AT" and "DE" all find German. The locale of the process
     * is not used.
     *
     * @param language         narrow text; null or empty: only the fallback language is tried
     * @param fallbackLanguage narrow text; null or empty: no fallback language
     * @param out              receives the text; empty if no language has one
     */
    void format(const char* language, const char* fallbackLanguage, I18NString& out) const;

protected:
    NRBMessage() = default;
    /** For derived classes. The base class has no state. */
    NRBMessage(const NRBMessage&) = default;
    /** For derived classes. The base class has no state. */
    NRBMessage& operator=(const NRBMessage&) = default;

    /**
     * Finds the text of the message in exactly one language.
     *
     * @param locale an ICU locale identifier in canonical form, such as "de" or "de_AT"
     * @param out    receives the text; must stay unchanged if there is none
     * @return whether there is a text in that language
     */
    virtual bool findText(const char* locale, I18NString& out) const = 0;

private:
    NRB_LOCAL bool formatInLanguageOrParent(const char* language, I18NString& out) const;
};
