#include "transformer/SourceDocument.h"

#include "engine/EngineMemory.h"

#include <xalanc/PlatformSupport/AttributeListImpl.hpp>
#include <xalanc/XMLSupport/FormatterTreeWalker.hpp>
#include <xalanc/XalanSourceTree/FormatterToSourceTree.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDocument.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeElement.hpp>

namespace {

/** Its document element is not one of its child nodes: no path leads to it. */
class DocumentWithoutElement : public xalanc::XalanSourceTreeDocument {
public:
    explicit DocumentWithoutElement(const xalanc::XalanDocument& original)
        : XalanSourceTreeDocument(engineMemory()),
          m_pElement(createElementNode(u"none", xalanc::AttributeListImpl(engineMemory()))) {
        xalanc::FormatterToSourceTree copy(engineMemory(), this);
        xalanc::FormatterTreeWalker(copy).traverse(&original);
    }

    xalanc::XalanElement* getDocumentElement() const override { return m_pElement; }

private:
    xalanc::XalanSourceTreeElement* m_pElement;
};

} // namespace

SourceDocument::SourceDocument(xalanc::XalanDocument* document) : m_pDocument(document) {
    if (document && !document->getDocumentElement()) {
        m_pCopy = std::make_unique<DocumentWithoutElement>(*document);
        m_pDocument = m_pCopy.get();
    }
}
