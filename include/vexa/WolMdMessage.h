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
 * A value without resources of its own: making one looks nothing up, and an unknown identifier is
 * no error, its message just has no text in any language. Any number of threads may use messages at
 * once.
 */
class VEXA_EXPORT WolMdMessage : public NRBMessage {
public:
    /** @param id the message's identifier; only the low 32 bits count */
    explicit WolMdMessage(unsigned long id);
    ~WolMdMessage() override;

private:
    VEXA_LOCAL bool findText(const char* locale, I18NString& out) const override;

    std::uint32_t m_nId;
};
