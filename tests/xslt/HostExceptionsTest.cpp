/**
 * @file
 * What a function, a handler or a resolver of the host throws reaches the host's call as it was
 * thrown, and the objects are usable afterwards.
 */
#include "XsltTest.h"

#include <sstream>

using vexa::Call;
using vexa::Document;
using vexa::Input;
using vexa::Options;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::XPath;

namespace {

/** A type of the host's own; not one of std. */
struct HostError {
    std::string text;
};

/** The text of what an operation throws, if it is the host's own. */
template <typename Operation>
std::string thrownBy(Operation operation) {
    try {
        operation();
        return "nothing";
    } catch (const HostError& error) {
        return error.text;
    } catch (const vexa::Error& error) {
        return std::string("vexa::Error ") + error.what();
    }
}

/** Throws while it is on. */
class Thrower {
public:
    void operator()(const std::string& text) const {
        if (isOn) {
            throw HostError{text};
        }
    }
    bool isOn = true;
};

Options withResolver(vexa::Resolver resolver) {
    Options options;
    options.access.externalEntities = true;
    options.resolver = std::move(resolver);
    return options;
}

const char* const READING_A_DOCUMENT = "<b/><xsl:copy-of select='document(\"mem:/d\")'/><c/>";

} // namespace

TEST(HostExceptionsTest, OfAFunction) {
    for (const char* place :
         {"<xsl:value-of select='f:f()'/>", "<b c='{f:f()}'/>", "<xsl:if test='f:f()'/>",
          "<xsl:variable name='v'><b><xsl:value-of select='f:f()'/></b></xsl:variable>"
          "<xsl:copy-of select='$v'/>",
          "<xsl:for-each select='//*'><xsl:sort select='f:f()'/><b/></xsl:for-each>",
          "<xsl:attribute name='{f:f()}'/>",
          "<xsl:message><xsl:value-of select='f:f()'/>"
          "</xsl:message>",
          "<xsl:copy-of select='document(f:f())'/>", "<xsl:number value='f:f()'/>",
          "<xsl:for-each select='//*[f:f()]'><b/></xsl:for-each>"}) {
        Thrower thrower;
        Transformation run(
            compiledRootTemplate("<d xmlns:f='urn:f'>" + std::string(place) + "</d>"));
        run.function("urn:f", "f", [&](const Call&) {
            thrower("out of f");
            return "n";
        });
        const Input source = Input::text("<a><b/><c/></a>");
        std::string text = "old";
        EXPECT_EQ(thrownBy([&] { run.toString(source); }), "out of f") << place;
        EXPECT_EQ(thrownBy([&] { run.toDocument(source); }), "out of f") << place;
        EXPECT_EQ(thrownBy([&] { run.to(source, vexa::Output::text(text)); }), "out of f");
        EXPECT_EQ(text, "old");
        thrower.isOn = false;
        EXPECT_NE(run.toString(source).find("<d"), std::string::npos) << place;
    }
}

TEST(HostExceptionsTest, OfAFunctionInAGlobalVariableOrAKey) {
    for (const char* content : {"<xsl:variable name='v' select='f:f()'/><xsl:template match='/'>"
                                "<xsl:value-of select='$v'/></xsl:template>",
                                "<xsl:key name='k' match='*' use='f:f()'/><xsl:template match='/'>"
                                "<xsl:value-of select='key(\"k\", 1)'/></xsl:template>",
                                "<xsl:template match='*[f:f()]'/>"}) {
        const auto sheet =
            Stylesheet::compile(Input::text("<xsl:stylesheet version='1.0' xmlns:f='urn:f' "
                                            "xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>" +
                                            std::string(content) + "</xsl:stylesheet>"));
        Transformation run(sheet);
        Thrower thrower;
        run.function("urn:f", "f", [&](const Call&) {
            thrower("out of f");
            return 1;
        });
        EXPECT_EQ(thrownBy([&] { run.toString(Input::text("<a/>")); }), "out of f") << content;
        thrower.isOn = false;
        EXPECT_EQ(thrownBy([&] { run.toString(Input::text("<a/>")); }), "nothing") << content;
    }
}

/** The very object, of every type: no slice, no copy by another exception. */
TEST(HostExceptionsTest, AsTheyWereThrown) {
    const HostError* thrown = nullptr;
    Transformation run(compiledRootTemplate("<xsl:value-of select='f:f()' xmlns:f='urn:f'/>"));
    const auto throwing = [&](auto value) {
        run.function("urn:f", "f", [=](const Call&) -> vexa::Value { throw value; });
        run.toString(Input::text("<a/>"));
    };
    EXPECT_THROW(throwing(1), int);
    EXPECT_THROW(throwing("text"), const char*);
    EXPECT_THROW(throwing(std::out_of_range("x")), std::out_of_range);
    EXPECT_THROW(throwing(std::bad_alloc()), std::bad_alloc);
    run.function("urn:f", "f", [&](const Call&) -> vexa::Value {
        try {
            throw HostError{"x"};
        } catch (const HostError& error) {
            thrown = &error;
            throw;
        }
    });
    try {
        run.toString(Input::text("<a/>"));
    } catch (const HostError& error) {
        EXPECT_EQ(&error, thrown);
    }
}

/** Its kind, text and place are the host's, and nothing is added. */
TEST(HostExceptionsTest, AnErrorOfTheInterfaceTooThatAHostThrows) {
    Transformation run(compiledRootTemplate(
        "<xsl:message>before</xsl:message><xsl:value-of select='f:f()' xmlns:f='urn:f'/>"));
    run.function("urn:f", "f", [](const Call&) -> vexa::Value {
        throw vexa::Error(vexa::ErrorKind::Limit, "mine", {"urn:host", 1, 2});
    });
    const auto error = failureOf([&] { run.toString(Input::text("<a/>")); });
    EXPECT_EQ(error.kind(), vexa::ErrorKind::Limit);
    EXPECT_STREQ(error.what(), "urn:host:1:2: mine");
    EXPECT_TRUE(error.diagnostics().empty());
}

TEST(HostExceptionsTest, OfTheHandlerOfMessages) {
    Thrower thrower;
    Transformation run(compiledRootTemplate("<b/><xsl:message>m</xsl:message><c/>"));
    run.onMessage([&](const vexa::Diagnostic& message) { thrower("at " + message.text); });
    EXPECT_EQ(thrownBy([&] { run.toString(Input::text("<a/>")); }), "at m");
    EXPECT_EQ(thrownBy([&] { run.toDocument(Input::text("<a/>")); }), "at m");
    thrower.isOn = false;
    EXPECT_EQ(run.toString(Input::text("<a/>")), "<b/><c/>");
}

TEST(HostExceptionsTest, OfTheHandlerOfMessagesAtAWarning) {
    Transformation run(
        compiledRootTemplate("<b/><xsl:copy-of select='document(\"file:///none\")'/><c/>"));
    run.onMessage([&](const vexa::Diagnostic&) { throw HostError{"at a warning"}; });
    EXPECT_EQ(thrownBy([&] { run.toString(Input::text("<a/>")); }), "at a warning");
    run.onMessage(nullptr);
    EXPECT_EQ(run.toString(Input::text("<a/>")), "<b/><c/>");
}

TEST(HostExceptionsTest, OfTheHandlerOfMessagesInAnExpression) {
    Options options;
    options.onMessage = [](const vexa::Diagnostic&) { throw HostError{"at a warning"}; };
    const XPath expression = XPath::compile("document('file:///none')");
    const Document document = parsed("<a/>");
    EXPECT_EQ(thrownBy([&] { expression.evaluate(document, options); }), "at a warning");
    EXPECT_EQ(expression.evaluate(document).nodes().size(), 0U);
}

/** The parser warns of an attribute that is declared twice. */
TEST(HostExceptionsTest, OfTheHandlerOfMessagesAtAWarningOfTheParser) {
    Options options;
    options.resolver = [](const std::string&, const std::string&) {
        return Input::text("<!DOCTYPE a [<!ATTLIST a x CDATA 'd' x CDATA 'e'>]><a/>");
    };
    options.onMessage = [](const vexa::Diagnostic& message) { throw HostError{message.text}; };
    const std::string expected = "attribute 'x' has already been declared for element 'a'";
    const Input input = Input::uri("mem:/x");
    EXPECT_EQ(thrownBy([&] { Document::parse(input, options); }), expected);
    EXPECT_EQ(thrownBy([&] { Stylesheet::compile(input, options); }), expected);
    Transformation run(compiledRootTemplate("<b/>"), options);
    EXPECT_EQ(thrownBy([&] { run.toString(input); }), expected);
    Transformation reading(compiledRootTemplate(READING_A_DOCUMENT), options);
    EXPECT_EQ(thrownBy([&] { reading.toString(Input::text("<a/>")); }), expected);
}

TEST(HostExceptionsTest, OfTheResolverAtAModule) {
    Thrower thrower;
    const Options options = withResolver([&](const std::string& uri, const std::string&) {
        thrower("at " + uri);
        return Input::text(stylesheet(""));
    });
    for (const std::string element : {"include", "import"}) {
        const Input input = Input::text(stylesheet("<xsl:" + element + " href='m'/>"), "mem:/main");
        thrower.isOn = true;
        EXPECT_EQ(thrownBy([&] { Stylesheet::compile(input, options); }), "at mem:/m");
        thrower.isOn = false;
        EXPECT_EQ(thrownBy([&] { Stylesheet::compile(input, options); }), "nothing");
    }
}

TEST(HostExceptionsTest, OfTheResolverAtTheInputItself) {
    const Options options =
        withResolver([](const std::string&, const std::string&) -> std::optional<Input> {
            throw HostError{"at the input"};
        });
    const Input input = Input::uri("mem:/x");
    EXPECT_EQ(thrownBy([&] { Stylesheet::compile(input, options); }), "at the input");
    EXPECT_EQ(thrownBy([&] { Document::parse(input, options); }), "at the input");
    Transformation run(compiledRootTemplate("<b/>"), options);
    EXPECT_EQ(thrownBy([&] { run.toString(input); }), "at the input");
    EXPECT_EQ(run.toString(Input::text("<a/>")), "<b/>");
}

/** The engine alone goes on here. */
TEST(HostExceptionsTest, OfTheResolverAtDocument) {
    Thrower thrower;
    Transformation run(compiledRootTemplate(READING_A_DOCUMENT),
                       withResolver([&](const std::string& uri, const std::string&) {
                           thrower("at " + uri);
                           return Input::text("<d/>");
                       }));
    std::string text = "old";
    EXPECT_EQ(thrownBy([&] { run.toString(Input::text("<a/>")); }), "at mem:/d");
    EXPECT_EQ(thrownBy([&] { run.toDocument(Input::text("<a/>")); }), "at mem:/d");
    EXPECT_EQ(thrownBy([&] { run.to(Input::text("<a/>"), vexa::Output::text(text)); }),
              "at mem:/d");
    EXPECT_EQ(text, "old");
    thrower.isOn = false;
    EXPECT_EQ(run.toString(Input::text("<a/>")), "<b/><d/><c/>");
}

TEST(HostExceptionsTest, OfTheResolverAtDocumentInAnExpression) {
    Thrower thrower;
    const Options options = withResolver([&](const std::string& uri, const std::string&) {
        thrower("at " + uri);
        return Input::text("<d/>");
    });
    const XPath expression = XPath::compile("count(document('mem:/d'))");
    EXPECT_EQ(thrownBy([&] { expression.evaluate(parsed("<a/>"), options); }), "at mem:/d");
    thrower.isOn = false;
    EXPECT_EQ(expression.evaluate(parsed("<a/>"), options).number(), 1);
}

TEST(HostExceptionsTest, OfTheResolverAtAnEntity) {
    Thrower thrower;
    const Options options = withResolver([&](const std::string& uri, const std::string&) {
        thrower("at " + uri);
        return Input::text("");
    });
    for (const char* text : {"<!DOCTYPE a SYSTEM 'mem:/e'><a/>",
                             "<!DOCTYPE a [<!ENTITY e SYSTEM 'mem:/e'>]><a>&e;</a>",
                             "<!DOCTYPE a [<!ENTITY % e SYSTEM 'mem:/e'> %e;]><a/>"}) {
        Transformation run(compiledRootTemplate("<b/>"), options);
        thrower.isOn = true;
        EXPECT_EQ(thrownBy([&] { Document::parse(Input::text(text), options); }), "at mem:/e");
        EXPECT_EQ(thrownBy([&] { run.toString(Input::text(text)); }), "at mem:/e");
        EXPECT_EQ(thrownBy([&] { Stylesheet::compile(Input::text(text), options); }), "at mem:/e");
        thrower.isOn = false;
        EXPECT_EQ(run.toString(Input::text(text)), "<b/>");
    }
}

/** Of a document that document() reads. */
TEST(HostExceptionsTest, OfTheResolverAtAnEntityOfADocument) {
    Thrower thrower;
    Transformation run(compiledRootTemplate(READING_A_DOCUMENT),
                       withResolver([&](const std::string& uri, const std::string&) {
                           if (uri == "mem:/d") {
                               return Input::text("<!DOCTYPE d SYSTEM 'e'><d/>");
                           }
                           thrower("at " + uri);
                           return Input::text("");
                       }));
    EXPECT_EQ(thrownBy([&] { run.toString(Input::text("<a/>")); }), "at mem:/e");
    thrower.isOn = false;
    EXPECT_EQ(run.toString(Input::text("<a/>")), "<b/><d/><c/>");
}

/** After the first exception no other callback is called: it is the one that the host gets. */
TEST(HostExceptionsTest, TheFirstOneEndsTheOperation) {
    std::string log;
    Options options =
        withResolver([&](const std::string&, const std::string&) -> std::optional<Input> {
            log += "resolver ";
            throw HostError{"first"};
        });
    options.onMessage = [&](const vexa::Diagnostic&) {
        log += "message ";
        throw HostError{"second"};
    };
    Transformation run(compiledRootTemplate("<xsl:variable name='d' select='document(\"mem:/d\")'/>"
                                            "<xsl:copy-of select='$d'/><xsl:message>m</xsl:message>"
                                            "<xsl:value-of select='f:f()' xmlns:f='urn:f'/>"
                                            "<xsl:copy-of select='document(\"mem:/e\")'/>"),
                       options);
    run.function("urn:f", "f", [&](const Call&) -> vexa::Value {
        log += "function ";
        throw HostError{"third"};
    });
    EXPECT_EQ(thrownBy([&] { run.toString(Input::text("<a/>")); }), "first");
    EXPECT_EQ(log, "resolver ");
}

TEST(HostExceptionsTest, OfAStreamThatIsToldToThrow) {
    class ThrowingBuffer : public std::streambuf {
    protected:
        int_type underflow() override { throw HostError{"at the stream"}; }
        int_type overflow(int_type) override { throw HostError{"at the stream"}; }
    } buffer;
    std::iostream stream(&buffer);
    stream.exceptions(std::ios_base::badbit);
    EXPECT_EQ(thrownBy([&] { Document::parse(Input::stream(stream)); }), "at the stream");
    stream.clear();
    EXPECT_EQ(thrownBy([&] { Stylesheet::compile(Input::stream(stream)); }), "at the stream");
    stream.clear();
    EXPECT_EQ(thrownBy([&] { parsed("<a/>").write(vexa::Output::stream(stream)); }),
              "at the stream");
    stream.clear();
    Transformation run(compiledRootTemplate("<b/>"));
    EXPECT_EQ(thrownBy([&] { run.to(Input::text("<a/>"), vexa::Output::stream(stream)); }),
              "at the stream");
    stream.clear();
    EXPECT_EQ(thrownBy([&] { run.toString(Input::stream(stream)); }), "at the stream");
    EXPECT_EQ(run.toString(Input::text("<a/>")), "<b/>");
}

/** A resolver's stream too, which document() reads. */
TEST(HostExceptionsTest, OfAStreamOfTheResolver) {
    class ThrowingBuffer : public std::streambuf {
    protected:
        int_type underflow() override { throw HostError{"at the stream"}; }
    } buffer;
    std::istream stream(&buffer);
    stream.exceptions(std::ios_base::badbit);
    Transformation run(compiledRootTemplate(READING_A_DOCUMENT),
                       withResolver([&](const std::string&, const std::string&) {
                           return Input::stream(stream);
                       }));
    EXPECT_EQ(thrownBy([&] { run.toString(Input::text("<a/>")); }), "at the stream");
}
