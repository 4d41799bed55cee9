/**
 * @file
 * A message of the VEXA message catalogue.
 */
#pragma once

#include <nrb/NRBMessage.h>
#include <vexa/VEXAExport.h>

#include <cstdint>

/**
 * One message of the catalogue, named by its numeric identifier. NRBMessage::format gives its text.
 *
 * Ownership: a value without resources of its own. Making one looks nothing up. An unknown
 * identifier is no error: its message just has no text in any language.
 *
 * Threads: any number of threads may use messages at once.
 */
class VEXA_EXPORT WolMdMessage : public NRBMessage {
public:
    /**
     * The message of that identifier.
     * @param id only its low 32 bits count
     */
    explicit WolMdMessage(unsigned long id);
    ~WolMdMessage() override;

private:
    VEXA_LOCAL bool findText(const char* locale, I18NString& out) const override;

    std::uint32_t m_nId;
};
