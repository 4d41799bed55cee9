/**
 * @file
 * Records between the parser and a tree.
 */
#pragma once

#include "xslt/DocumentData.h"
#include "xslt/Operation.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

/**
 * A record as the parser reported it, one event after another in one piece of memory: any process
 * can build the tree from a copy of it.
 */
class PackedRecord {
public:
    /** @param operation what it takes counts there */
    explicit PackedRecord(Operation& operation) : m_operation(operation) {}

    /** Begins another one. @param uri of the document */
    void begin(std::u16string_view uri);
    void unparsedEntity(std::u16string_view name, std::u16string_view publicId,
                        std::u16string_view systemId, std::u16string_view notation) {
        add(Event::UnparsedEntity, {name, publicId, systemId, notation});
    }
    /** Of the element that startElement() begins next. */
    void attribute(std::u16string_view uri, std::u16string_view name, std::u16string_view type,
                   std::u16string_view value) {
        add(Event::Attribute, {uri, name, type, value});
    }
    void startElement(std::u16string_view uri, std::u16string_view name) {
        add(Event::StartElement, {uri, name});
    }
    void endElement() { add(Event::EndElement, {}); }
    void text(std::u16string_view text) { add(Event::Text, {text}); }
    void whitespace(std::u16string_view text) { add(Event::Whitespace, {text}); }
    void comment(std::u16string_view text) { add(Event::Comment, {text}); }
    void instruction(std::u16string_view target, std::u16string_view data) {
        add(Event::Instruction, {target, data});
    }
    /** Gives up what is there. */
    void discard() { m_units = std::u16string(); }

    /** For another process. */
    std::string bytes() const;
    /** @param bytes what bytes() gave. @throws vexa::Error: Usage for an odd number of them */
    void setBytes(const std::string& bytes);

    /** The document. @throws vexa::Error: Limit; Usage where the record is damaged */
    std::shared_ptr<vexa::DocumentData> build() const;

private:
    enum class Event : char16_t {
        UnparsedEntity,
        Attribute,
        StartElement,
        EndElement,
        Text,
        Whitespace,
        Comment,
        Instruction,
    };
    class Builder;

    void add(Event event, std::initializer_list<std::u16string_view> texts);
    void add(std::u16string_view text);

    Operation& m_operation;
    std::u16string m_units;
};
