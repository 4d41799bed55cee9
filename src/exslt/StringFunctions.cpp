#include "exslt/ExsltTables.h"
#include "exslt/NewNodes.h"

#include <algorithm>
#include <memory>
#include <vector>

#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

namespace {

using Text = std::u16string_view;

constexpr Text TOKEN = u"token";

/** Adds a token for each character: so is an empty delimiter defined. */
void addCharacters(Text text, NewNodes& nodes) {
    while (!text.empty()) {
        const std::size_t length = lengthOfCharacter(text, 0);
        nodes.addElement(TOKEN, text.substr(0, length));
        text.remove_prefix(length);
    }
}

/** Adds what is between delimiters. Nothing is no token. */
void addToken(Text text, NewNodes& nodes) {
    if (!text.empty()) {
        nodes.addElement(TOKEN, text);
    }
}

/** The length of the delimiter that begins at an index, or 0. */
std::size_t delimiterAt(Text text, std::size_t index, Text delimiters) {
    const Text character = text.substr(index, lengthOfCharacter(text, index));
    for (std::size_t i = 0; i < delimiters.size();) {
        const Text delimiter = delimiters.substr(i, lengthOfCharacter(delimiters, i));
        if (delimiter == character) {
            return character.size();
        }
        i += delimiter.size();
    }
    return 0;
}

ExsltCall::Result tokenize(const ExsltCall& call) {
    const Text text = call.text(0);
    const Text delimiters = call.size() > 1 ? call.text(1) : u"\t\n\r ";
    NewNodes nodes(call);
    if (delimiters.empty()) {
        addCharacters(text, nodes);
        return nodes.nodes();
    }
    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size();) {
        call.poll();
        if (const std::size_t length = delimiterAt(text, i, delimiters)) {
            addToken(text.substr(begin, i - begin), nodes);
            i += length;
            begin = i;
        } else {
            i += lengthOfCharacter(text, i);
        }
    }
    addToken(text.substr(begin), nodes);
    return nodes.nodes();
}

ExsltCall::Result split(const ExsltCall& call) {
    Text text = call.text(0);
    const Text pattern = call.size() > 1 ? call.text(1) : u" ";
    NewNodes nodes(call);
    if (pattern.empty()) {
        addCharacters(text, nodes);
        return nodes.nodes();
    }
    for (auto found = text.find(pattern); found != Text::npos; found = text.find(pattern)) {
        call.poll();
        addToken(text.substr(0, found), nodes);
        text.remove_prefix(found + pattern.size());
    }
    addToken(text, nodes);
    return nodes.nodes();
}

/** A piece of the text of str:replace(): one that stays, or one for the node of a search string. */
struct Piece {
    Text text;
    std::size_t search;
};

constexpr std::size_t STAYS = std::size_t(-1);

/** Cuts a piece where a search string is found. An empty one is found between all characters. */
void cut(Text text, Text search, std::size_t number, std::vector<Piece>& pieces,
         const ExsltCall& call) {
    while (!text.empty()) {
        call.poll();
        const auto found = search.empty() ? lengthOfCharacter(text, 0) : text.find(search);
        if (found >= text.size()) {
            break;
        }
        if (found > 0) {
            pieces.push_back({text.substr(0, found), STAYS});
        }
        pieces.push_back({{}, number});
        text.remove_prefix(found + search.size());
    }
    if (!text.empty()) {
        pieces.push_back({text, STAYS});
    }
}

std::vector<std::u16string> searchStrings(const ExsltCall& call) {
    std::vector<std::u16string> strings;
    if (!call.isNodeSet(1)) {
        strings.emplace_back(call.text(1));
        return strings;
    }
    const auto& nodes = call.nodes(1);
    for (xalanc::NodeRefListBase::size_type i = 0; i < nodes.getLength(); ++i) {
        strings.push_back(textOf(*nodes.item(i), call));
    }
    return strings;
}

void addReplacement(std::size_t number, NewNodes& nodes, const ExsltCall& call) {
    if (!call.isNodeSet(2)) {
        if (number == 0) {
            nodes.addText(call.text(2));
        }
        return;
    }
    const auto& replacements = call.nodes(2);
    if (number < replacements.getLength()) {
        nodes.addCopy(*replacements.item(number));
    }
}

/** The longest search string is replaced first, and what replaces it is not searched again. */
ExsltCall::Result replace(const ExsltCall& call) {
    const std::vector<std::u16string> searches = searchStrings(call);
    std::vector<std::size_t> order(searches.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return searches[a].size() > searches[b].size();
    });
    std::vector<Piece> pieces{{call.text(0), STAYS}};
    for (const std::size_t number : order) {
        std::vector<Piece> smaller;
        for (const Piece& piece : pieces) {
            if (piece.search == STAYS) {
                cut(piece.text, searches[number], number, smaller, call);
            } else {
                smaller.push_back(piece);
            }
        }
        pieces = std::move(smaller);
    }
    NewNodes nodes(call);
    for (const Piece& piece : pieces) {
        if (piece.search == STAYS) {
            nodes.addText(piece.text);
        } else {
            addReplacement(piece.search, nodes, call);
        }
    }
    return nodes.nodes();
}

std::size_t countCharacters(Text text) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); i += lengthOfCharacter(text, i)) {
        ++count;
    }
    return count;
}

/** The first characters of a text, which has as many or more. */
Text firstCharacters(Text text, std::size_t count) {
    std::size_t end = 0;
    for (; count > 0; --count) {
        end += lengthOfCharacter(text, end);
    }
    return text.substr(0, end);
}

/** The engine's own never ends for a negative length. */
ExsltCall::Result padding(const ExsltCall& call) {
    const double length = std::floor(call.number(0) + 0.5);
    const Text pattern = call.size() > 1 ? call.text(1) : u" ";
    if (!(length > 0) || pattern.empty()) {
        return call.result(Text());
    }
    checkLength(0, length > MOST_CHARACTERS ? MOST_CHARACTERS + 1 : 0, call);
    const std::size_t inPattern = countCharacters(pattern);
    ExsltText padding(call);
    auto rest = static_cast<std::size_t>(length);
    for (; rest >= inPattern; rest -= inPattern) {
        padding.append(pattern);
    }
    padding.append(firstCharacters(pattern, rest));
    return call.result(padding.text());
}

/** The engine's own counts a character above U+FFFF as two, and cuts it in halves. */
ExsltCall::Result align(const ExsltCall& call) {
    const Text text = call.text(0);
    const Text padding = call.text(1);
    const Text alignment = call.size() > 2 ? call.text(2) : u"left";
    const std::size_t length = countCharacters(text);
    const std::size_t width = countCharacters(padding);
    if (length >= width) {
        return call.result(firstCharacters(text, width));
    }
    std::size_t before = 0;
    if (alignment == u"right") {
        before = width - length;
    } else if (alignment == u"center") {
        before = (width - length) / 2;
    }
    ExsltText aligned(call);
    aligned.append(firstCharacters(padding, before));
    aligned.append(text);
    aligned.append(padding.substr(firstCharacters(padding, before + length).size()));
    return call.result(aligned.text());
}

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

struct Encoding {
    bool isKnown;
    /** Null for UTF-8, which needs none. */
    Converter converter;
};

/** @param index of the argument that names it */
Encoding encodingFor(const ExsltCall& call, std::size_t index) {
    const Text name = call.size() > index ? call.text(index) : Text();
    if (call.size() <= index || name == u"UTF-8") {
        return {true, Converter(nullptr, ucnv_close)};
    }
    UErrorCode status = U_ZERO_ERROR;
    const bool isName = !name.empty() && name.size() <= UCNV_MAX_CONVERTER_NAME_LENGTH &&
                        std::all_of(name.begin(), name.end(),
                                    [](char16_t c) { return c > u' ' && c < 0x7F && c != u','; });
    Converter converter(isName ? ucnv_open(std::string(name.begin(), name.end()).c_str(), &status)
                               : nullptr,
                        ucnv_close);
    return {isName && U_SUCCESS(status), std::move(converter)};
}

bool isHexDigit(char16_t c) {
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
}

bool isEscape(Text text, std::size_t index) {
    return text.size() - index > 2 && text[index] == u'%' && isHexDigit(text[index + 1]) &&
           isHexDigit(text[index + 2]);
}

void appendEscape(unsigned char byte, std::u16string& text) {
    static constexpr char16_t DIGITS[] = u"0123456789ABCDEF";
    text += u'%';
    text += DIGITS[byte >> 4];
    text += DIGITS[byte & 0xF];
}

/** Escapes a character. One that the encoding does not have becomes a question mark. */
void appendEscaped(Text character, UConverter* converter, std::u16string& text) {
    char bytes[16];
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t length = 0;
    const auto units = static_cast<std::int32_t>(character.size());
    if (converter) {
        length = ucnv_fromUChars(converter, bytes, sizeof bytes, character.data(), units, &status);
    } else {
        u_strToUTF8(bytes, sizeof bytes, &length, character.data(), units, &status);
    }
    if (U_FAILURE(status) || length > static_cast<std::int32_t>(sizeof bytes)) {
        appendEscape('?', text);
        return;
    }
    for (std::int32_t i = 0; i < length; ++i) {
        appendEscape(static_cast<unsigned char>(bytes[i]), text);
    }
}

ExsltCall::Result encodeUri(const ExsltCall& call) {
    const auto [isKnown, converter] = encodingFor(call, 2);
    if (!isKnown) {
        return call.result(Text());
    }
    if (converter) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                              &status);
    }
    const Text text = call.text(0);
    const Text reserved = call.boolean(1) ? u"" : u";/?:@&=+$,[]";
    ExsltText encoded(call);
    std::u16string escaped;
    for (std::size_t i = 0; i < text.size();) {
        const Text character = text.substr(i, lengthOfCharacter(text, i));
        const char16_t c = character[0];
        const bool isUnreserved =
            c < 0x80 && (u_isalnum(c) || Text(u"-_.!~*'()").find(c) != Text::npos);
        if (isUnreserved || reserved.find(c) != Text::npos || isEscape(text, i)) {
            encoded.append(character);
        } else {
            escaped.clear();
            appendEscaped(character, converter.get(), escaped);
            encoded.append(escaped);
        }
        i += character.size();
    }
    return call.result(encoded.text());
}

unsigned hexValue(char16_t digit) {
    return digit <= u'9' ? digit - u'0' : (digit | 0x20U) - u'a' + 10U;
}

/** What the bytes say; those that are no character of the encoding are left out. */
std::u16string decode(const std::string& bytes, UConverter* converter) {
    const auto count = static_cast<std::int32_t>(bytes.size());
    std::u16string decoded(bytes.size() * 2, u'\0');
    const auto room = static_cast<std::int32_t>(decoded.size());
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t length = 0;
    if (converter) {
        ucnv_setToUCallBack(converter, UCNV_TO_U_CALLBACK_SKIP, nullptr, nullptr, nullptr, &status);
        length = ucnv_toUChars(converter, decoded.data(), room, bytes.data(), count, &status);
    } else {
        u_strFromUTF8(decoded.data(), room, &length, bytes.data(), count, &status);
        if (status == U_INVALID_CHAR_FOUND) {
            status = U_ZERO_ERROR;
            const Converter utf8(ucnv_open("UTF-8", &status), ucnv_close);
            return decode(bytes, utf8.get());
        }
    }
    decoded.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(length));
    return decoded;
}

/** Characters that XML does not have are left out. */
void appendDecoded(const std::string& bytes, UConverter* converter, ExsltText& text) {
    std::u16string decoded = decode(bytes, converter);
    decoded.erase(std::remove_if(decoded.begin(), decoded.end(),
                                 [](char16_t c) {
                                     return (c < u' ' && c != u'\t' && c != u'\n' && c != u'\r') ||
                                            c == 0xFFFE || c == 0xFFFF;
                                 }),
                  decoded.end());
    text.append(decoded);
}

ExsltCall::Result decodeUri(const ExsltCall& call) {
    const auto [isKnown, converter] = encodingFor(call, 1);
    if (!isKnown) {
        return call.result(Text());
    }
    const Text text = call.text(0);
    ExsltText decoded(call);
    std::string bytes;
    for (std::size_t i = 0; i < text.size();) {
        if (isEscape(text, i)) {
            bytes.clear();
            for (; i < text.size() && isEscape(text, i); i += 3) {
                bytes += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
            }
            appendDecoded(bytes, converter.get(), decoded);
        } else {
            const Text plain = text.substr(i, text.find(u'%', i + 1) - i);
            decoded.append(plain);
            i += plain.size();
        }
    }
    return call.result(decoded.text());
}

constexpr ExsltFunction FUNCTIONS[] = {
    {u"align", 2, 3, align},          {u"decode-uri", 1, 2, decodeUri},
    {u"encode-uri", 2, 3, encodeUri}, {u"padding", 1, 2, padding},
    {u"replace", 3, 3, replace},      {u"split", 1, 2, split},
    {u"tokenize", 1, 2, tokenize},
};

} // namespace

ExsltTable stringFunctions() {
    return FUNCTIONS;
}
