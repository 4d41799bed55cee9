/**
 * @file
 * How the platform's strings reach the engine.
 */
#pragma once

#include <nrb/I18NString.h>

#include <xalanc/XalanDOM/XalanDOMString.hpp>

/**
 * A name, a parameter value or an expression: through its narrow form. Of plain ASCII, which nearly
 * all are, that is the text itself: no converter of the process is locked for it.
 */
inline xalanc::XalanDOMString toEngineString(const I18NString& text) {
    const auto* const utf16 = static_cast<const char16_t*>(text.getExternalBuffer());
    const char16_t* end = utf16;
    while (*end > 0 && *end < 0x80) {
        ++end;
    }
    if (*end == 0) {
        return xalanc::XalanDOMString(utf16, xalanc::XalanMemMgrs::getDefaultXercesMemMgr(),
                                      static_cast<xalanc::XalanDOMString::size_type>(end - utf16));
    }
    return xalanc::XalanDOMString(text.c_str());
}

/** A file name or URI: as the UTF-16 text that it is. The pointer lives as long as `name`. */
inline const char16_t* toSystemId(const I18NString& name) {
    const char16_t* utf16 = nullptr;
    I18NExternalBufferToUTF16(utf16, name.getExternalBuffer(), false);
    return utf16;
}
