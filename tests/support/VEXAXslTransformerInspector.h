/**
 * @file
 * A look inside the facade.
 */
#pragma once

#include <vexa/VEXAXslTransformer.h>

#include <xalanc/XalanTransformer/XalanTransformer.hpp>

struct VEXAXslTransformerInspector {
    static auto& params(VEXAXslTransformer& facade) { return facade.m_mapParams; }
    static auto& functions(VEXAXslTransformer& facade) { return facade.m_mapFunctions; }
    static I18NString& ownError(VEXAXslTransformer& facade) { return facade.m_strLastError; }
    static xalanc::XalanTransformer& engine(VEXAXslTransformer& facade) {
        return *facade.m_pTransformer;
    }
};
