#include "xslt/ResultFragments.h"

#include <xalanc/XSLT/XResultTreeFrag.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDocument.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDocumentFragment.hpp>

using xalanc::FormatterToSourceTree;
using xalanc::XalanDocumentFragment;
using xalanc::XalanSourceTreeDocumentFragment;

namespace {

template <typename Type>
void destroyAt(Type* object, xercesc::MemoryManager& memory) {
    object->~Type();
    memory.deallocate(object);
}

} // namespace

/** The engine's own is destroyed through a context that may have ended. */
class ResultFragments::Value : public xalanc::XResultTreeFrag {
public:
    Value(xalanc::XalanDocumentFragment& fragment, ResultFragments& owner)
        : XResultTreeFrag(fragment, owner.m_memory), m_owner(owner) {}

protected:
    void dereferenced() override { m_owner.destroy(this); }

private:
    ResultFragments& m_owner;
};

FormatterToSourceTree& ResultFragments::begin(xalanc::XalanSourceTreeDocument& document,
                                              const xalanc::PrefixResolver* prefixes) {
    if (m_open == m_writers.size()) {
        m_writers.push_back(std::make_unique<FormatterToSourceTree>(m_memory));
    }
    FormatterToSourceTree& writer = *m_writers[m_open];
    writer.setDocument(&document);
    writer.setDocumentFragment(new (m_memory.allocate(sizeof(XalanSourceTreeDocumentFragment)))
                                   XalanSourceTreeDocumentFragment(m_memory, document));
    writer.setPrefixResolver(prefixes);
    ++m_open;
    return writer;
}

xalanc::XObject* ResultFragments::end() {
    XalanDocumentFragment& fragment = *m_writers[--m_open]->getDocumentFragment();
    return new (m_memory.allocate(sizeof(Value))) Value(fragment, *this);
}

void ResultFragments::destroy(Value* value) {
    XalanDocumentFragment* const fragment = value->release();
    destroyAt(value, m_memory);
    m_values.forget(*fragment);
    destroyAt(fragment, m_memory);
}
