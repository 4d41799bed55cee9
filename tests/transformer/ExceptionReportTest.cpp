/**
 * @file
 * The exact text of every exception report of every operation. Extension functions throw the
 * exceptions inside the engine.
 */
#include "support/InMemoryTest.h"
#include "support/ThrowingFunctions.h"
#include "support/VEXAXslTransformerInspector.h"

#include <functional>
#include <locale>
#include <new>
#include <stdexcept>

#include <xalanc/PlatformSupport/XSLException.hpp>
#include <xalanc/XSLT/XSLTProcessorException.hpp>
#include <xalanc/XalanDOM/XalanDOMException.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/RuntimeException.hpp>

using xalanc::XalanDOMString;

namespace {

constexpr XMLFileLoc UNKNOWN_LOCATION = static_cast<XMLFileLoc>(-1);

/** A location with any system id, also a null one. */
class Location : public xercesc::Locator {
public:
    Location(const char16_t* systemId, XMLFileLoc line, XMLFileLoc column)
        : m_pSystemId(systemId), m_line(line), m_column(column) {}
    const XMLCh* getPublicId() const override { return nullptr; }
    const XMLCh* getSystemId() const override { return m_pSystemId; }
    XMLFileLoc getLineNumber() const override { return m_line; }
    XMLFileLoc getColumnNumber() const override { return m_column; }

private:
    const char16_t* m_pSystemId;
    XMLFileLoc m_line;
    XMLFileLoc m_column;
};

/** An XSLException with its own type name. */
class TestXslException : public xalanc::XSLException {
public:
    TestXslException(const char* message, const Location& location)
        : XSLException(XalanDOMString(message), xalanc::XalanMemMgrs::getDefaultXercesMemMgr(),
                       &location) {}
    explicit TestXslException(const char* message)
        : XSLException(XalanDOMString(message), xalanc::XalanMemMgrs::getDefaultXercesMemMgr()) {}
    const xalanc::XalanDOMChar* getType() const override { return u"TestType"; }
};

void throwXslException(const char* message, const char16_t* uri, XMLFileLoc line,
                       XMLFileLoc column) {
    throw TestXslException(message, Location(uri, line, column));
}

void throwSaxParseException(const char16_t* systemId, XMLFileLoc line, XMLFileLoc column) {
    throw xercesc::SAXParseException(u"message \u03B1", nullptr, systemId, line, column);
}

struct ReportCase {
    const char* name;
    std::function<void()> thrower;
    int result;
    const char* inMemoryTransform;
    const char* xpathQuery;
};

std::ostream& operator<<(std::ostream& stream, const ReportCase& report) {
    return stream << report.name;
}

const ReportCase CASES[] = {
    {"XslExceptionWithUri", [] { throwXslException("message", u"file:/a.xsl", 3, 4); }, -1,
     "\nXSLException Type is: TestType\nMessage is: message (file:/a.xsl, line 3, column 4)\n",
     "\nXSLException Type is: TestType\nMessage is: message (file:/a.xsl, line 3, column 4)\n"},
    {"XslExceptionWithoutUri", [] { throwXslException("message", nullptr, 0, 0); }, -1,
     "\nXSLException Type is: TestType\nMessage is: message (Unknown URI, line 0, column 0)\n",
     "\nXSLException Type is: TestType\nMessage is: message (Unknown URI, line 0, column 0)\n"},
    {"XslExceptionWithEmptyUri", [] { throwXslException("message", u"", 7, 8); }, -1,
     "\nXSLException Type is: TestType\nMessage is: message (Unknown URI, line 7, column 8)\n",
     "\nXSLException Type is: TestType\nMessage is: message (Unknown URI, line 7, column 8)\n"},
    {"XslExceptionWithoutLocation", [] { throw TestXslException("message"); }, -1,
     "\nXSLException Type is: TestType\nMessage is: message (Unknown URI, line -1, column -1)\n",
     "\nXSLException Type is: TestType\nMessage is: message (Unknown URI, line -1, column -1)\n"},
    {"XslExceptionWithEmptyMessage", [] { throwXslException("", u"u", 1, 2); }, -1,
     "\nXSLException Type is: TestType\nMessage is:  (u, line 1, column 2)\n",
     "\nXSLException Type is: TestType\nMessage is:  (u, line 1, column 2)\n"},
    {"XslExceptionWithOtherScripts",
     [] { throwXslException("\xCE\xB1 \xF0\x9F\x98\x80", u"\u4F60", 1, 2); }, -1,
     "\nXSLException Type is: TestType\nMessage is: \xCE\xB1 \xF0\x9F\x98\x80 "
     "(\xE4\xBD\xA0, line 1, column 2)\n",
     "\nXSLException Type is: TestType\nMessage is: \xCE\xB1 \xF0\x9F\x98\x80 "
     "(\xE4\xBD\xA0, line 1, column 2)\n"},
    {"SaxParseExceptionWithSystemId", [] { throwSaxParseException(u"a.xml", 5, 6); }, -2,
     "SAXParseException: message \xCE\xB1 (a.xml, line 5, column 6)\n",
     "SAXParseException: message \xCE\xB1 (a.xml, line 5, column 6)\n"},
    {"SaxParseExceptionWithNullSystemId", [] { throwSaxParseException(nullptr, 0, 0); }, -2,
     "SAXParseException: message \xCE\xB1 (Unknown system ID, line 0, column 0)\n",
     "SAXParseException: message \xCE\xB1 (Unknown system ID, line 0, column 0)\n"},
    {"SaxParseExceptionWithEmptySystemId",
     [] { throwSaxParseException(u"", UNKNOWN_LOCATION, UNKNOWN_LOCATION); }, -2,
     "SAXParseException: message \xCE\xB1 (, line -1, column -1)\n",
     "SAXParseException: message \xCE\xB1 (, line -1, column -1)\n"},
    {"SaxException", [] { throw xercesc::SAXException(u"sax message"); }, -2,
     "SAXException: sax message\n", "SAXException: sax message\n"},
    {"XmlException",
     [] {
         throw xercesc::RuntimeException("file.cpp", 1, xercesc::XMLExcepts::CPtr_PointerIsZero);
     },
     -3, "XMLException:  \n\nType is:  RuntimeException\nMessage is: NULL pointer\n",
     "XMLException: Type is: RuntimeException\nMessage is: NULL pointer\n"},
    {"XalanDomException",
     [] { throw xalanc::XalanDOMException(xalanc::XalanDOMException::NOT_FOUND_ERR); }, -4,
     "XalanDOMException[8] occured.\n", "XalanDOMException caught.  The code is 8.\n"},
    {"StandardException", [] { throw std::runtime_error("what"); }, -5, "\nUnhandled Exception\n\n",
     "\nUnhandled Exception\n"},
    {"BadAlloc", [] { throw std::bad_alloc(); }, -5, "\nUnhandled Exception\n\n",
     "\nUnhandled Exception\n"},
    {"XercesOutOfMemory", [] { throw xercesc::OutOfMemoryException(); }, -5,
     "\nUnhandled Exception\n\n", "\nUnhandled Exception\n"},
    {"Number", [] { throw 42; }, -5, "\nUnhandled Exception\n\n", "\nUnhandled Exception\n"},
};

/** A locale of a host that groups digits. Reports must not use it. */
class GroupingNumbers : public std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

class ExceptionReportTest : public EngineTest, public ::testing::WithParamInterface<ReportCase> {
protected:
    ExceptionReportTest() {
        m_in->InitializeInputSource("<a xmlns:t='urn:throwing'/>");
        m_out->InitializeOutputTarget();
    }

    TemporaryFolder m_folder;
    VEXAXslTransformer m_transformer;
    Dom2DomPtr m_in = m_transformer.createDom2Dom();
    Dom2DomPtr m_out = m_transformer.createDom2Dom();
};

} // namespace

TEST_P(ExceptionReportTest, InMemoryTransform) {
    const ReportCase& report = GetParam();
    m_transformer.installExternalFunction("Throw", ThrowingFunctionOf(report.thrower));
    const std::string sheet = m_folder.write(
        "sheet.xsl", stylesheetWithRootTemplate("<b><xsl:value-of select='vexa:Throw()'/></b>"));
    EXPECT_EQ(m_transformer.doTransform(*m_in, sheet.c_str(), *m_out), report.result);
    EXPECT_STREQ(m_transformer.getLastError(), report.inMemoryTransform);
    EXPECT_EQ(VEXAXslTransformerInspector::ownError(m_transformer),
              I18NString(report.inMemoryTransform));
    EXPECT_STREQ(m_out->getLastError(), "");

    // A report replaces the previous one, and a success clears it.
    m_transformer.installExternalFunction("Throw", ThrowingFunctionOf([] { throw 1; }));
    const Dom2DomPtr second = m_transformer.createDom2Dom();
    second->InitializeOutputTarget();
    EXPECT_EQ(m_transformer.doTransform(*m_in, sheet.c_str(), *second), -5);
    EXPECT_STREQ(m_transformer.getLastError(), "\nUnhandled Exception\n\n");
    const std::string good = m_folder.write("good.xsl", stylesheetWithRootTemplate("<b/>"));
    const Dom2DomPtr third = m_transformer.createDom2Dom();
    third->InitializeOutputTarget();
    EXPECT_EQ(m_transformer.doTransform(*m_in, good.c_str(), *third), 0);
    EXPECT_STREQ(m_transformer.getLastError(), "");
}

TEST_P(ExceptionReportTest, XPathQuery) {
    const ReportCase& report = GetParam();
    const XalanDOMString ns("urn:throwing"), name("Throw");
    xalanc::XalanTransformer::installExternalFunctionGlobal(ns, name,
                                                            ThrowingFunctionOf(report.thrower));
    std::ostringstream out;
    EXPECT_EQ(m_transformer.doXPath(*m_in, "string(t:Throw())", out), report.result);
    EXPECT_STREQ(m_transformer.getLastError(), report.xpathQuery);
    EXPECT_EQ(VEXAXslTransformerInspector::ownError(m_transformer), I18NString(report.xpathQuery));
    EXPECT_EQ(out.str(), "");
    xalanc::XalanTransformer::uninstallExternalFunctionGlobal(ns, name);

    EXPECT_EQ(m_transformer.doXPath(*m_in, "string(name(/*))", out), 0);
    EXPECT_EQ(out.str(), "a");
    EXPECT_STREQ(m_transformer.getLastError(), "");
}

TEST_F(EngineTest, ReportsHavePlainNumbersInEveryLocale) {
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new GroupingNumbers));
    const TemporaryFolder folder;
    const std::string sheet = folder.write(
        "sheet.xsl", stylesheetWithRootTemplate("<b><xsl:value-of select='vexa:Throw()'/></b>"));
    VEXAXslTransformer transformer;
    transformer.installExternalFunction(
        "Throw", ThrowingFunctionOf([] { throwSaxParseException(u"s", 123456, 5'000'000'000); }));
    const Dom2DomPtr in = transformer.createDom2Dom(), out = transformer.createDom2Dom();
    in->InitializeInputSource("<a/>");
    out->InitializeOutputTarget();
    EXPECT_EQ(transformer.doTransform(*in, sheet.c_str(), *out), -2);
    // The numbers are written as long.
    const std::string column = std::to_string(static_cast<long>(5'000'000'000));
    EXPECT_EQ(transformer.getLastError(),
              "SAXParseException: message \xCE\xB1 (s, line 123456, column " + column + ")\n");
    std::locale::global(before);
}

INSTANTIATE_TEST_SUITE_P(, ExceptionReportTest, ::testing::ValuesIn(CASES),
                         [](const auto& test) { return test.param.name; });

namespace {

/** A stream buffer that throws when it is written to. */
class ThrowingBuffer : public std::streambuf {
public:
    explicit ThrowingBuffer(std::function<void()> thrower) : m_thrower(std::move(thrower)) {}

private:
    std::streamsize xsputn(const char*, std::streamsize) override {
        m_thrower();
        return 0;
    }
    int_type overflow(int_type) override {
        m_thrower();
        return traits_type::eof();
    }

    std::function<void()> m_thrower;
};

} // namespace

/** Serialize() reports XSLException only, with the report of the in-memory transform. */
TEST_P(ExceptionReportTest, Serialization) {
    const ReportCase& report = GetParam();
    const std::string sheet = m_folder.write("b.xsl", stylesheetWithRootTemplate("<b/>"));
    ASSERT_EQ(m_transformer.doTransform(*m_in, sheet.c_str(), *m_out), 0);
    ThrowingBuffer buffer(report.thrower);
    std::ostream stream(&buffer);
    // By default the stream hides exceptions of its buffer.
    stream.exceptions(std::ios::badbit);
    if (report.result == -1) {
        EXPECT_EQ(m_out->Serialize(stream), -1);
        EXPECT_STREQ(m_out->getLastError(), report.inMemoryTransform);
    } else {
        EXPECT_ANY_THROW(m_out->Serialize(stream));
        EXPECT_STREQ(m_out->getLastError(), "");
    }
    EXPECT_STREQ(m_transformer.getLastError(), "");
}
