/**
 * @file
 * Exceptions of other types than XSLException leave Dom2Dom::Serialize() unchanged: the caller
 * catches the object that was thrown.
 */
#include "support/InMemoryTest.h"

#include <cxxabi.h>
#include <exception>
#include <functional>
#include <new>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <typeinfo>

#include <xalanc/XalanDOM/XalanDOMException.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/RuntimeException.hpp>

namespace {

struct ThrownObject {
    const char* name;
    std::function<void()> thrower;
};

std::ostream& operator<<(std::ostream& stream, const ThrownObject& object) {
    return stream << object.name;
}

const ThrownObject THROWN_OBJECTS[] = {
    {"SaxParseException",
     [] { throw xercesc::SAXParseException(u"message", u"public", u"a.xml", 5, 6); }},
    {"SaxException", [] { throw xercesc::SAXException(u"sax message"); }},
    {"XmlException",
     [] {
         throw xercesc::RuntimeException("file.cpp", 1, xercesc::XMLExcepts::CPtr_PointerIsZero);
     }},
    {"XalanDomException",
     [] { throw xalanc::XalanDOMException(xalanc::XalanDOMException::NOT_FOUND_ERR); }},
    {"XercesOutOfMemory", [] { throw xercesc::OutOfMemoryException(); }},
    {"StandardException", [] { throw std::runtime_error("what"); }},
    {"BadAlloc", [] { throw std::bad_alloc(); }},
    {"Number", [] { throw 42; }},
};

std::string text(const XMLCh* message) {
    return I18NString(message, -1, nullptr, nullptr).c_str();
}

/** The type and the content of the exception that is being handled. */
std::string describeCurrentException() {
    const std::string type = abi::__cxa_current_exception_type()->name();
    try {
        throw;
    } catch (const xercesc::SAXParseException& e) {
        return type + ": " + text(e.getMessage()) + ' ' + text(e.getPublicId()) + ' ' +
               text(e.getSystemId()) + ' ' + std::to_string(e.getLineNumber()) + ' ' +
               std::to_string(e.getColumnNumber());
    } catch (const xercesc::SAXException& e) {
        return type + ": " + text(e.getMessage());
    } catch (const xercesc::XMLException& e) {
        return type + ": " + text(e.getMessage()) + ' ' + e.getSrcFile() + ' ' +
               std::to_string(e.getSrcLine());
    } catch (const xalanc::XalanDOMException& e) {
        return type + ": " + std::to_string(e.getExceptionCode());
    } catch (const std::exception& e) {
        return type + ": " + e.what();
    } catch (int number) {
        return type + ": " + std::to_string(number);
    } catch (...) {
        return type;
    }
}

/** Throws instead of writing, and keeps what it threw. */
class ThrowingBuffer : public std::streambuf {
public:
    explicit ThrowingBuffer(const std::function<void()>& thrower) : m_thrower(thrower) {}

    std::exception_ptr thrown;
    std::string description;

private:
    std::streamsize xsputn(const char*, std::streamsize) override {
        throwNow();
        return 0;
    }
    int_type overflow(int_type) override {
        throwNow();
        return traits_type::eof();
    }
    void throwNow() {
        try {
            m_thrower();
        } catch (...) {
            thrown = std::current_exception();
            description = describeCurrentException();
            throw;
        }
    }

    const std::function<void()>& m_thrower;
};

class SerializeExceptionTest : public EngineTest,
                               public ::testing::WithParamInterface<ThrownObject> {
protected:
    void expectUnchanged(Dom2Dom& document) {
        ThrowingBuffer buffer(GetParam().thrower);
        std::ostream stream(&buffer);
        // The stream would swallow what its buffer throws.
        stream.exceptions(std::ios::badbit);
        try {
            document.Serialize(stream);
            ADD_FAILURE() << "no exception";
        } catch (...) {
            EXPECT_TRUE(std::current_exception() == buffer.thrown) << "another object";
            EXPECT_EQ(describeCurrentException(), buffer.description);
        }
        EXPECT_STREQ(document.getLastError(), "");
        EXPECT_STREQ(m_transformer.getLastError(), "");
    }

    TemporaryFolder m_folder;
    VEXAXslTransformer m_transformer;
};

} // namespace

TEST_P(SerializeExceptionTest, PassesUnchangedOutOfTheDocument) {
    const Dom2DomPtr in = m_transformer.createDom2Dom(), out = m_transformer.createDom2Dom();
    const std::string sheet = m_folder.write("sheet.xsl", stylesheetWithRootTemplate("<b/>"));
    in->InitializeInputSource("<a/>");
    out->InitializeOutputTarget();
    ASSERT_EQ(m_transformer.doTransform(*in, sheet.c_str(), *out), 0);
    expectUnchanged(*out);
}

TEST_P(SerializeExceptionTest, PassesUnchangedOutOfTheTrailer) {
    const Dom2DomPtr in = m_transformer.createDom2Dom();
    in->InitializeInputSource("<a/>");
    expectUnchanged(*in);
}

INSTANTIATE_TEST_SUITE_P(, SerializeExceptionTest, ::testing::ValuesIn(THROWN_OBJECTS),
                         [](const auto& test) { return test.param.name; });
