/**
 * @file
 * Conversions of the platform's strings for the engine.
 */
#pragma once

#include "engine/EngineMemory.h"

#include <nrb/I18NString.h>

#include <xalanc/XalanDOM/XalanDOMString.hpp>

/**
 * Converts a name, a parameter value or an expression through its narrow form. ASCII is copied:
 * this needs no converter and no lock.
 */
inline xalanc::XalanDOMString toEngineString(const I18NString& text) {
    if (const auto length = text.asciiLength()) {
        return xalanc::XalanDOMString(static_cast<const char16_t*>(text.getExternalBuffer()),
                                      engineMemory(),
                                      static_cast<xalanc::XalanDOMString::size_type>(*length));
    }
    return xalanc::XalanDOMString(text.c_str());
}

/** Returns the UTF-16 text of a file name or URI. The pointer is valid as long as `name`. */
inline const char16_t* toSystemId(const I18NString& name) {
    const char16_t* utf16 = nullptr;
    I18NExternalBufferToUTF16(utf16, name.getExternalBuffer(), false);
    return utf16;
}
