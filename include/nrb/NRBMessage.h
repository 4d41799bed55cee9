/**
 * @file
 * A message that exists in several languages.
 */
#pragma once

#include <nrb/I18NString.h>
#include <nrb/NRBExport.h>

/**
 * The base of catalogue messages: finds the language in which a message can be told. Where the
 * texts are kept is the business of the class derived from it.
 *
 * Ownership: a value without state of its own.
 *
 * Threads: any number of threads may format at once, as far as the derived class's findText()
 * allows it.
 *
 * Exceptions: what findText() throws, and std::bad_alloc.
 */
class NRB_EXPORT NRBMessage {
public:
    virtual ~NRBMessage();

    /**
     * Writes the message's text into `out`.
     *
     * The languages are tried in this order: `language`, its parents (de_AT, then de), then
     * `fallbackLanguage` and its parents. A language is an ICU locale identifier or a BCP 47 tag,
     * in upper or lower case: "de_AT", "de-AT" and "DE" all find German. The process's own locale
     * plays no part. If none has a text, `out` becomes empty.
     *
     * @param language         narrow text; null or empty: go straight to the fallback
     * @param fallbackLanguage narrow text; null or empty: no fallback
     * @param out              receives the text
     */
    void format(const char* language, const char* fallbackLanguage, I18NString& out) const;

protected:
    NRBMessage() = default;
    /** Copies nothing, as there is nothing to copy. */
    NRBMessage(const NRBMessage&) = default;
    /** Copies nothing, as there is nothing to copy. */
    NRBMessage& operator=(const NRBMessage&) = default;

    /**
     * Gives the message's text in exactly one language.
     *
     * @param locale an ICU locale identifier in canonical form, such as "de" or "de_AT"
     * @param out    receives the text; to be left alone where there is none
     * @return whether there is a text in that language
     */
    virtual bool findText(const char* locale, I18NString& out) const = 0;

private:
    NRB_LOCAL bool formatInLanguageOrParent(const char* language, I18NString& out) const;
};
