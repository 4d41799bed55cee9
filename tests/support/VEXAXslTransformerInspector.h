/**
 * @file
 * Access to private members of the transformer.
 */
#pragma once

#include <vexa/VEXAXslTransformer.h>

#include <xalanc/XalanTransformer/XalanTransformer.hpp>

namespace inspector {

/** An explicit instantiation may name private members: this one makes a member accessible. */
template <typename Tag, typename Tag::Type pointer>
struct Opener {
    friend typename Tag::Type memberOf(Tag) { return pointer; }
};

template <typename Member>
struct Tag {
    using Type = Member VEXAXslTransformer::*;
};

struct Error : Tag<I18NString> {
    friend Type memberOf(Error);
};
struct Engine : Tag<std::unique_ptr<xalanc::XalanTransformer>> {
    friend Type memberOf(Engine);
};
struct Params : Tag<std::map<I18NString, I18NString>> {
    friend Type memberOf(Params);
};
struct Functions : Tag<std::map<I18NString, TqXsltFunction*>> {
    friend Type memberOf(Functions);
};

template struct Opener<Error, &VEXAXslTransformer::m_strLastError>;
template struct Opener<Engine, &VEXAXslTransformer::m_pTransformer>;
template struct Opener<Params, &VEXAXslTransformer::m_mapParams>;
template struct Opener<Functions, &VEXAXslTransformer::m_mapFunctions>;

} // namespace inspector

struct VEXAXslTransformerInspector {
    static auto& params(VEXAXslTransformer& transformer) {
        return transformer.*memberOf(inspector::Params());
    }
    static auto& functions(VEXAXslTransformer& transformer) {
        return transformer.*memberOf(inspector::Functions());
    }
    static I18NString& ownError(VEXAXslTransformer& transformer) {
        return transformer.*memberOf(inspector::Error());
    }
    static xalanc::XalanTransformer& engine(VEXAXslTransformer& transformer) {
        return *(transformer.*memberOf(inspector::Engine()));
    }
};
