/**
 * @file
 * Small documents, and streams that take no memory of their own.
 */
#pragma once

#include "support/TestFiles.h"

#include <cstring>
#include <istream>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

/** The files that all trials use. */
struct Workplace {
    TemporaryFolder folder;
    std::string source = folder.write("source.xml", "<a><i>2</i><i>1</i></a>");
    std::string sheet = folder.write(
        "sheet.xsl", stylesheet("<xsl:output omit-xml-declaration='yes'/><xsl:param name='p'/>"
                                "<xsl:template match='/'><b p='{$p}'><xsl:for-each select='//i'>"
                                "<xsl:sort/><c><xsl:value-of select='.'/></c></xsl:for-each>"
                                "<xsl:value-of select=\"vexa:GetLocalizedString(0,'en')\"/></b>"
                                "</xsl:template>"));
    std::string messageSheet = folder.write(
        "message.xsl",
        stylesheetWithRootTemplate("<xsl:message terminate='yes'>enough</xsl:message>"));
    std::string malformedFile = folder.write("malformed.xml", "<a>\n</b>");
    std::string output = folder.path("out");
};

/** Made once, before memory runs out. */
inline const Workplace& workplace() {
    static const Workplace place;
    return place;
}

constexpr const char* SOURCE_TEXT = "<a><i>2</i><i>1</i></a>";

/** What the sheet makes of the source where p is "v". */
constexpr const char* RESULT_TEXT = "<b p=\"v\"><c>1</c><c>2</c>";

/** A stream into an array. */
class ArrayOutput : private std::streambuf, public std::ostream {
public:
    ArrayOutput() : std::ostream(static_cast<std::streambuf*>(this)) { reset(); }

    void reset() {
        clear();
        setp(m_text, m_text + sizeof m_text);
    }
    std::string_view text() const { return {m_text, static_cast<std::size_t>(pptr() - m_text)}; }

private:
    char m_text[2000];
};

/** A stream out of a text. */
class ArrayInput : private std::streambuf, public std::istream {
public:
    explicit ArrayInput(const char* text) : std::istream(static_cast<std::streambuf*>(this)) {
        m_text = const_cast<char*>(text); // a get area is never written to
        rewind();
    }
    void rewind() {
        clear();
        setg(m_text, m_text, m_text + std::strlen(m_text));
    }

private:
    char* m_text;
};

inline bool beginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}
