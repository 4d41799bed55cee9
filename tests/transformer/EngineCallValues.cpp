#include "EngineCallValues.h"

#include <nrb/I18NString.h>

#include <xalanc/XSLT/XSLTInputSource.hpp>
#include <xalanc/XalanTransformer/XalanDocumentBuilder.hpp>

std::string narrow(const xalanc::XalanDOMChar* text) {
    return I18NString(text, -1, nullptr, nullptr).c_str();
}

const void* nodeOf(const xalanc::XSLTInputSource& source) {
    return source.getNode();
}

const void* documentOf(xalanc::XalanDocumentBuilder* builder) {
    return builder->getDocument();
}
