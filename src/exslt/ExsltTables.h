/**
 * @file
 * The functions of each EXSLT namespace.
 */
#pragma once

#include "exslt/ExsltFunctions.h"

/** A table of functions. */
struct ExsltTable {
    template <std::size_t size>
    // NOLINTNEXTLINE(google-explicit-constructor): a view of any table
    constexpr ExsltTable(const ExsltFunction (&functions)[size])
        : m_begin(functions), m_end(functions + size) {}

    const ExsltFunction* begin() const { return m_begin; }
    const ExsltFunction* end() const { return m_end; }

private:
    const ExsltFunction* m_begin;
    const ExsltFunction* m_end;
};

ExsltTable commonFunctions();
ExsltTable dateFunctions();
ExsltTable dynamicFunctions();
ExsltTable mathFunctions();
ExsltTable regularExpressionFunctions();
ExsltTable stringFunctions();
