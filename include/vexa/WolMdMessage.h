/**
 * @file
 * A message of the VEXA message catalogue.
 */
#pragma once

#include <nrb/NRBMessage.h>
#include <vexa/VEXAExport.h>

#include <cstdint>

/**
 * One message of the catalogue, given by its numeric identifier. NRBMessage::format() returns its
 * text. A message with an unknown identifier has no text in any language.
 *
 * Ownership: a value type. The constructor looks nothing up.
 *
 * Threads: any number of threads may use messages at the same time.
 */
class VEXA_EXPORT WolMdMessage : public NRBMessage {
public:
    /**
     * Creates the message with an identifier.
     * @param id only the low 32 bits are used
     */
    explicit WolMdMessage(unsigned long id);
    ~WolMdMessage() override;

private:
    VEXA_LOCAL bool findText(const char* locale, I18NString& out) const override;

    std::uint32_t m_nId;
};
