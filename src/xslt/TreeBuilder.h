/**
 * @file
 * Trees from what a parser reports.
 */
#pragma once

#include "xslt/DocumentData.h"
#include "xslt/Operation.h"

#include "engine/EngineMemory.h"

#include <string>

#include <xalanc/XalanSourceTree/XalanSourceTreeContentHandler.hpp>

/**
 * Builds the tree. The engine's own handler copies all of a text for each piece that the parser
 * gives it, and crashes at an unparsed entity without a system id.
 */
class TreeBuilder : public xalanc::XalanSourceTreeContentHandler {
public:
    TreeBuilder(vexa::DocumentData::Tree& tree, Operation& operation)
        : XalanSourceTreeContentHandler(engineMemory(), &tree), m_operation(operation) {}
    TreeBuilder(const TreeBuilder&) = delete;
    TreeBuilder& operator=(const TreeBuilder&) = delete;
    ~TreeBuilder() override { m_operation.returnMemory(m_text.capacity() * sizeof(char16_t)); }

    void startElement(const XMLCh* const uri, const XMLCh* const localName, const XMLCh* const name,
                      const xalanc::AttributesType& attributes) override {
        m_operation.checkDepth(++m_depth);
        addText();
        XalanSourceTreeContentHandler::startElement(uri, localName, name, attributes);
    }
    void endElement(const XMLCh* const uri, const XMLCh* const localName,
                    const XMLCh* const name) override {
        addText();
        XalanSourceTreeContentHandler::endElement(uri, localName, name);
        --m_depth;
    }
    void characters(const XMLCh* const text, const size_type length) override {
        m_operation.poll();
        m_operation.append(m_text, text, length);
    }
    void ignorableWhitespace(const XMLCh* const text, const size_type length) override {
        addText();
        XalanSourceTreeContentHandler::ignorableWhitespace(text, length);
    }
    void comment(const XMLCh* const text, const size_type length) override {
        addText();
        XalanSourceTreeContentHandler::comment(text, length);
    }
    void processingInstruction(const XMLCh* const target, const XMLCh* const data) override {
        addText();
        XalanSourceTreeContentHandler::processingInstruction(target, data);
    }
    void unparsedEntityDecl(const XMLCh* const name, const XMLCh* const publicId,
                            const XMLCh* const systemId, const XMLCh* const notation) override {
        XalanSourceTreeContentHandler::unparsedEntityDecl(name, publicId, systemId ? systemId : u"",
                                                          notation);
    }

private:
    void addText() {
        m_operation.poll();
        if (!m_text.empty()) {
            XalanSourceTreeContentHandler::characters(m_text.data(), m_text.size());
            m_text.clear();
        }
    }

    Operation& m_operation;
    std::size_t m_depth = 0;
    std::u16string m_text;
};
