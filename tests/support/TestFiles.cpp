#include "TestFiles.h"

#include <vexa/VEXAXslTransformer.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::string name = (fs::temp_directory_path() / "vexa-test-XXXXXX").string();
    if (!mkdtemp(name.data())) {
        throw std::runtime_error("cannot create the temporary folder " + name);
    }
    m_path = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& content) const {
    const std::string file = path(name);
    std::ofstream stream(file, std::ios::binary);
    stream << content;
    EXPECT_TRUE(stream.flush()) << file;
    return file;
}

std::string TemporaryFolder::list() const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(m_path)) {
        names.insert(entry.path().filename().string());
    }
    std::string all;
    for (const std::string& name : names) {
        all += all.empty() ? name : " " + name;
    }
    return all;
}

std::string readFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream) << path;
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}

std::string projectFile(const std::string& name) {
    return std::string(PROJECT_FOLDER "/") + name;
}

std::string stylesheet(const std::string& content) {
    return "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'"
           " xmlns:vexa='" VEXA_XSL_EXTENSION_NAMESPACE "'"
           " xmlns:xalan='http://xml.apache.org/xalan'"
           " xmlns:exsl='http://exslt.org/common'"
           " exclude-result-prefixes='vexa xalan exsl'>" +
           content + "</xsl:stylesheet>";
}

std::string stylesheetWithRootTemplate(const std::string& content) {
    return stylesheet("<xsl:output method='xml' omit-xml-declaration='yes'/>"
                      "<xsl:template match='/'>" +
                      content + "</xsl:template>");
}

std::string sheetInAnyScript() {
    return stylesheet("<xsl:output method='text' encoding='UTF-8'/><xsl:param "
                      "name='gr\xC3\xB6\xC3\x9F'/><xsl:template match='/'><xsl:value-of "
                      "select='vexa:\xC3\x84($gr\xC3\xB6\xC3\x9F)'/></xsl:template>");
}

::testing::AssertionResult sameBytes(const std::string& actual, const std::string& expected) {
    if (actual == expected) {
        return ::testing::AssertionSuccess();
    }
    const auto shorter = std::min(actual.size(), expected.size());
    std::size_t offset = 0;
    while (offset < shorter && actual[offset] == expected[offset]) {
        ++offset;
    }
    const std::size_t begin = offset < 40 ? 0 : offset - 40;
    return ::testing::AssertionFailure()
           << actual.size() << " bytes instead of " << expected.size() << ", from byte " << offset
           << " on: \"" << actual.substr(begin, 100) << "\" instead of \""
           << expected.substr(begin, 100) << '"';
}
