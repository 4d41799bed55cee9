/**
 * @file
 * How the platform's strings reach the engine.
 */
#pragma once

#include <nrb/I18NString.h>

#include <xalanc/XalanDOM/XalanDOMString.hpp>

/** A name, a parameter value or an expression: through its narrow form. */
inline xalanc::XalanDOMString toEngineString(const I18NString& text) {
    return xalanc::XalanDOMString(text.c_str());
}

/** A file name or URI: as the UTF-16 text that it is. The pointer lives as long as `name`. */
inline const char16_t* toSystemId(const I18NString& name) {
    const char16_t* utf16 = nullptr;
    I18NExternalBufferToUTF16(utf16, name.getExternalBuffer(), false);
    return utf16;
}
