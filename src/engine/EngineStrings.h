/**
 * @file
 * How the platform's strings reach the engine.
 */
#pragma once

#include "engine/EngineMemory.h"

#include <nrb/I18NString.h>

#include <xalanc/XalanDOM/XalanDOMString.hpp>

/**
 * A name, a parameter value or an expression: through its narrow form. ASCII needs no conversion,
 * and takes no lock of a converter.
 */
inline xalanc::XalanDOMString toEngineString(const I18NString& text) {
    if (const auto length = text.asciiLength()) {
        return xalanc::XalanDOMString(static_cast<const char16_t*>(text.getExternalBuffer()),
                                      engineMemory(),
                                      static_cast<xalanc::XalanDOMString::size_type>(*length));
    }
    return xalanc::XalanDOMString(text.c_str());
}

/** A file name or URI: as the UTF-16 text that it is. The pointer lives as long as `name`. */
inline const char16_t* toSystemId(const I18NString& name) {
    const char16_t* utf16 = nullptr;
    I18NExternalBufferToUTF16(utf16, name.getExternalBuffer(), false);
    return utf16;
}
