#include "xslt/PackedRecord.h"

#include "xslt/NamespaceScopes.h"
#include "xslt/Text.h"
#include "xslt/TreeBuilder.h"

#include <cstdint>
#include <cstring>

#include <xalanc/PlatformSupport/AttributesImpl.hpp>

namespace {

/** Stands in front; a new one when the form changes. */
constexpr std::u16string_view FORM = u"vexa-record-1";

/** What is kept for the next record, in units. */
constexpr std::size_t MOST_KEPT = std::size_t{64} * 1024;

/** The length of a text stands before it. */
constexpr std::size_t LENGTH_UNITS = sizeof(std::uint32_t) / sizeof(char16_t);

[[noreturn]] void failAsDamaged(const Operation& operation) {
    operation.fail(vexa::ErrorKind::Usage, "the packed record is damaged");
}

} // namespace

/** Reads the events. Nothing is trusted: they may have come from anywhere. */
class PackedRecord::Builder {
public:
    Builder(std::u16string_view units, Operation& operation)
        : m_rest(units), m_operation(operation) {}

    std::shared_ptr<vexa::DocumentData> build() {
        check(text() == FORM);
        auto document = std::make_shared<vexa::DocumentData>(toUtf8(text()));
        document->memory().setOperation(&m_operation);
        TreeBuilder tree(*document->tree(), m_operation);
        tree.startDocument();
        do {
            addTo(tree);
        } while (!m_isComplete);
        check(m_rest.empty());
        tree.endDocument();
        document->seal();
        return document;
    }

private:
    void addTo(TreeBuilder& tree) {
        const Event event = this->event();
        const bool isInside = m_depth != 0;
        switch (event) {
        case Event::UnparsedEntity: {
            const auto name = text();
            const auto publicId = text();
            const auto systemId = text();
            const auto notation = text();
            tree.unparsedEntityDecl(name.data(), publicId.data(), systemId.data(), notation.data());
            break;
        }
        case Event::Attribute: {
            const auto uri = text();
            const auto name = text();
            const auto type = text();
            const auto value = text();
            m_attributes.addAttribute(uri.data(), localPart(name).data(), name.data(), type.data(),
                                      value.data());
            break;
        }
        case Event::StartElement: {
            const auto uri = text();
            const auto name = text();
            ++m_depth;
            tree.startElement(uri.data(), localPart(name).data(), name.data(), m_attributes);
            m_attributes.clear();
            break;
        }
        case Event::EndElement:
            check(isInside);
            m_isComplete = --m_depth == 0;
            tree.endElement(u"", u"", u"");
            break;
        case Event::Text:
        case Event::Whitespace:
        case Event::Comment:
            check(isInside);
            addText(tree, event, text());
            break;
        case Event::Instruction: {
            check(isInside);
            const auto target = text();
            tree.processingInstruction(target.data(), text().data());
            break;
        }
        default:
            check(false);
        }
    }
    static void addText(TreeBuilder& tree, Event event, std::u16string_view text) {
        if (event == Event::Text) {
            tree.characters(text.data(), text.size());
        } else if (event == Event::Whitespace) {
            tree.ignorableWhitespace(text.data(), text.size());
        } else {
            tree.comment(text.data(), text.size());
        }
    }

    std::u16string_view take(std::size_t count) {
        check(count <= m_rest.size());
        const auto taken = m_rest.substr(0, count);
        m_rest.remove_prefix(count);
        return taken;
    }
    Event event() { return static_cast<Event>(take(1).front()); }
    /** It is terminated by a null, which does not count. */
    std::u16string_view text() {
        std::uint32_t length = 0;
        std::memcpy(&length, take(LENGTH_UNITS).data(), sizeof length);
        const auto taken = take(length);
        check(take(1).front() == u'\0');
        return taken;
    }
    void check(bool isRight) const {
        if (!isRight) {
            failAsDamaged(m_operation);
        }
    }

    std::u16string_view m_rest;
    Operation& m_operation;
    xalanc::AttributesImpl m_attributes{engineMemory()};
    std::size_t m_depth = 0;
    bool m_isComplete = false;
};

void PackedRecord::begin(std::u16string_view uri) {
    if (m_units.capacity() > MOST_KEPT) {
        discard();
    }
    m_units.clear();
    add(FORM);
    add(uri);
}

std::string PackedRecord::bytes() const {
    return std::string(reinterpret_cast<const char*>(m_units.data()),
                       m_units.size() * sizeof(char16_t));
}

void PackedRecord::setBytes(const std::string& bytes) {
    if (bytes.size() % sizeof(char16_t) != 0) {
        failAsDamaged(m_operation);
    }
    m_operation.takeMemory(bytes.size());
    m_units.resize(bytes.size() / sizeof(char16_t));
    std::memcpy(m_units.data(), bytes.data(), m_units.size() * sizeof(char16_t));
}

std::shared_ptr<vexa::DocumentData> PackedRecord::build() const {
    return Builder(m_units, m_operation).build();
}

void PackedRecord::add(Event event, std::initializer_list<std::u16string_view> texts) {
    const auto unit = static_cast<char16_t>(event);
    m_operation.append(m_units, &unit, 1);
    for (const std::u16string_view text : texts) {
        add(text);
    }
}

void PackedRecord::add(std::u16string_view text) {
    // The parser's own lengths are smaller.
    const auto length = static_cast<std::uint32_t>(text.size());
    char16_t units[LENGTH_UNITS];
    std::memcpy(units, &length, sizeof length);
    m_operation.append(m_units, units, LENGTH_UNITS);
    m_operation.append(m_units, text.data(), text.size());
    m_operation.append(m_units, u"", 1); // the null
}
