/**
 * @file
 * Small documents, and streams that allocate no memory.
 */
#pragma once

#include "support/TestFiles.h"

#include <cstring>
#include <filesystem>
#include <istream>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

/**
 * The files that all trials use, in the current folder. They have the same URIs in each run: the
 * engine stores these in hash tables, and how often a table allocates depends on the hash.
 */
class SweepFiles {
public:
    SweepFiles() { std::filesystem::current_path(m_folder.path("")); }

    /** Writes a file and gives its URI. The engine would resolve the links in a path. */
    std::string write(const std::string& name, const std::string& content) const {
        m_folder.write(name, content);
        return "file:///proc/self/cwd/" + name;
    }

private:
    TemporaryFolder m_folder;

public:
    const std::string source = write("source.xml", "<a><i>2</i><i>1</i></a>");
    const std::string sheet = write(
        "sheet.xsl", stylesheet("<xsl:output omit-xml-declaration='yes'/><xsl:param name='p'/>"
                                "<xsl:template match='/'><b p='{$p}'><xsl:for-each select='//i'>"
                                "<xsl:sort/><c><xsl:value-of select='.'/></c></xsl:for-each>"
                                "<xsl:value-of select=\"vexa:GetLocalizedString(0,'en')\"/></b>"
                                "</xsl:template>"));
    const std::string messageSheet =
        write("message.xsl",
              stylesheetWithRootTemplate("<xsl:message terminate='yes'>enough</xsl:message>"));
    const std::string malformedFile = write("malformed.xml", "<a>\n</b>");
    const std::string output = "out";
};

/** Created once, before any allocation fails. */
inline const SweepFiles& sweepFiles() {
    static const SweepFiles files;
    return files;
}

constexpr const char* SOURCE_TEXT = "<a><i>2</i><i>1</i></a>";

/** The beginning of the result of `sheet` over `source`, with "v" as p. */
constexpr const char* RESULT_TEXT = "<b p=\"v\"><c>1</c><c>2</c>";

/** An output stream into an array. */
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

/** An input stream from a text. */
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
