/**
 * @file
 * Parts of a document that is too large for memory.
 */
#pragma once

#include <vexa/xslt/Document.h>
#include <vexa/xslt/Export.h>
#include <vexa/xslt/Input.h>
#include <vexa/xslt/Options.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>

namespace vexa {

/**
 * Reads an input as a stream: each outermost element of one name becomes a document of its own,
 * with the namespaces that are in scope at it. What is between these elements is passed over.
 * Memory is bounded by the largest record, not by the input.
 *
 * One thread uses an object; the documents may be given to others, and outlive it.
 *
 * @code
 * vexa::Records records(vexa::Input::file("orders.xml"), "order");
 * for (const vexa::Document& order : records) {
 *     run.to(order, vexa::Output::stream(std::cout));
 * }
 * @endcode
 */
class VEXA_XSLT_EXPORT Records {
public:
    /**
     * Opens the input.
     *
     * @param input   what is read; a stream must live as long as the records
     * @param element a local name, or "{uri}name"
     * @param options of the whole reading. The limits of memory, time and depth hold for each
     *                record from its start tag on; the depth counts from the record's element
     * @throws Error: Input, Denied; Usage for an empty name
     */
    Records(const Input& input, const std::string& element, const Options& options = {});
    /** Takes over the reading. The other answers with Error: Usage. */
    Records(Records&& other) noexcept;
    /** Takes over the reading. The other answers with Error: Usage. */
    Records& operator=(Records&& other) noexcept;
    ~Records();

    /**
     * Reads the next record. One that reaches a limit is passed over: it counts, and the next call
     * goes on behind it. After other errors there are no more; nor where the parser itself reaches
     * a limit, for example by an endless attribute: then count() stays as it was.
     *
     * @return nothing at the end of the input
     * @throws Error: Limit; Parse, Input, Denied, Cancelled
     */
    std::optional<Document> next();

    /**
     * Reads the next record as next() does, but builds no document: another process with the same
     * version of this library, on the same kind of processor, does that by unpack(). So one reader
     * keeps several processes busy.
     *
     * @return bytes; nothing at the end of the input
     * @throws as next()
     */
    std::optional<std::string> nextPacked();
    /**
     * Builds the document of a record. Any thread may call it.
     *
     * @param packed  what nextPacked() returned
     * @param options of the building: its limits hold
     * @throws Error: Limit, Cancelled; Usage where these are no bytes of nextPacked()
     */
    static Document unpack(const std::string& packed, const Options& options = {});

    /** How many records have been read, those that reached a limit among them. */
    std::uint64_t count() const;
    /** The line on which the last record begins, from 1. */
    std::size_t line() const;
    /** How many bytes of the input the parser has taken: it is ahead of the records. */
    std::uint64_t bytesRead() const;

    /** Reads while it advances. */
    class Iterator {
    public:
        using iterator_category = std::input_iterator_tag; ///< each record is read once
        using value_type = Document;                       ///< a record
        using difference_type = std::ptrdiff_t;            ///< not used
        using pointer = const Document*;                   ///< to a record
        using reference = const Document&;                 ///< a record

        /** The end. */
        Iterator() = default;
        /** Reads the first record. @throws as Records::next() */
        explicit Iterator(Records& records) : m_records(&records) { ++*this; }

        /** The record. */
        const Document& operator*() const { return *m_record; }
        /** The record. */
        const Document* operator->() const { return &*m_record; }
        /** Reads the next record. @throws as Records::next() */
        Iterator& operator++() {
            m_record = m_records->next();
            return *this;
        }
        /** Reads the next record. @throws as Records::next() */
        void operator++(int) { ++*this; }
        /** Whether both are at the end, or neither. */
        bool operator==(const Iterator& other) const {
            return m_record.has_value() == other.m_record.has_value();
        }
        /** Whether one is at the end. */
        bool operator!=(const Iterator& other) const { return !(*this == other); }

    private:
        Records* m_records = nullptr;
        std::optional<Document> m_record;
    };

    /** Reads the first record that has not been read yet. @throws as next() */
    Iterator begin() { return Iterator(*this); }
    /** The end of the input. */
    Iterator end() { return {}; }

private:
    class VEXA_XSLT_LOCAL Data;
    VEXA_XSLT_LOCAL Data& data() const;
    std::unique_ptr<Data> m_data;
};

} // namespace vexa
