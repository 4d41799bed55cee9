#include <vexa/TqXsltFunction.h>

#include "functions/EngineFunctionAdapter.h"

using xalanc::XalanDOMString;

TqXsltFunction::TqXsltFunction() = default;

TqXsltFunction::TqXsltFunction(const TqXsltFunction& other) = default;

TqXsltFunction::~TqXsltFunction() = default;

xalanc::Function* TqXsltFunction::clone(xercesc::MemoryManager& memoryManager) const {
    return EngineFunctionAdapter::create(*this, memoryManager);
}

const XalanDOMString& TqXsltFunction::getError(XalanDOMString& buffer) const {
    return buffer = getError();
}

XalanDOMString TqXsltFunction::I18NStringToXalanDOMString(const I18NString& text) {
    const char16_t* utf16 = nullptr;
    I18NExternalBufferToUTF16(utf16, text.getExternalBuffer(), false);
    return XalanDOMString(utf16);
}

I18NString TqXsltFunction::XalanDOMStringToI18NString(const XalanDOMString& text) {
    const void* externalBuffer = nullptr;
    I18NUTF16ToExternalBuffer(externalBuffer, text.c_str(), false);
    return I18NString(externalBuffer, -1, nullptr, nullptr);
}
