/**
 * @file
 * The result tree fragments of one engine.
 */
#pragma once

#include "xslt/ValueExchange.h"

#include <cstddef>
#include <memory>
#include <vector>

#include <xalanc/XPath/XObject.hpp>
#include <xalanc/XalanSourceTree/FormatterToSourceTree.hpp>
#include <xercesc/framework/MemoryManager.hpp>

/**
 * Makes and destroys fragments, one inside the other. The engine's own stores take longer to
 * destroy one the more there are.
 */
class ResultFragments {
public:
    /**
     * Both must outlive this object.
     *
     * @param memory frees what was not destroyed
     * @param values forgets each fragment that is destroyed
     */
    ResultFragments(xercesc::MemoryManager& memory, ValueExchange& values)
        : m_memory(memory), m_values(values) {}

    /** @return writes to a new fragment, until end(). @param document has its nodes */
    xalanc::FormatterToSourceTree& begin(xalanc::XalanSourceTreeDocument& document,
                                         const xalanc::PrefixResolver* prefixes);
    /**
     * The fragment that was begun last, for a reference-counting pointer. It is destroyed with the
     * last one, which must not outlive this object.
     */
    xalanc::XObject* end();

private:
    class Value;

    void destroy(Value* value);

    xercesc::MemoryManager& m_memory;
    ValueExchange& m_values;
    /** One for each fragment under way, and some more. */
    std::vector<std::unique_ptr<xalanc::FormatterToSourceTree>> m_writers;
    std::size_t m_open = 0;
};
