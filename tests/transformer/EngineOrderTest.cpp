/**
 * @file
 * The engine objects that the library creates for an in-memory operation: their order, their
 * arguments, and the order of their destruction.
 */
#include "EngineCalls.h"

#include "support/InMemoryTest.h"
#include "support/TestFunctions.h"
#include "support/VEXAXslTransformerInspector.h"

#include <vexa/VEXAConfig.h>

#include <xalanc/XalanDOM/XalanDocument.hpp>
#include <xalanc/XalanDOM/XalanElement.hpp>

namespace {

using Calls = std::vector<std::string>;

/** One line for each call, so that a failed comparison shows the lines that differ. */
std::string lines(const Calls& calls) {
    std::string text;
    for (const std::string& call : calls) {
        text += call + '\n';
    }
    return text;
}

/** Common to the in-memory transform and the query, up to the engine. */
const Calls SUPPORTS = {
    "XalanSourceTreeDOMSupport()",
    "XalanSourceTreeParserLiaison(XalanSourceTreeDOMSupport)",
    "XSLTProcessorEnvSupportDefault(null)",
};

const Calls ENGINE = {
    "XObjectFactoryDefault(10, 10, 10, 5)",
    "XPathFactoryDefault()",
    "XSLTEngineImpl(XalanSourceTreeParserLiaison, XSLTProcessorEnvSupportDefault, "
    "XalanSourceTreeDOMSupport, XObjectFactoryDefault, XPathFactoryDefault)",
};

const Calls END_OF_ENGINE = {
    "~XSLTEngineImpl",
    "~XPathFactoryDefault",
    "~XObjectFactoryDefault",
    "~XSLTProcessorEnvSupportDefault",
    "~XalanSourceTreeParserLiaison",
    "~XalanSourceTreeDOMSupport",
};

const Calls CONTEXTS = {
    "XSLTInputSource()",
    "XPathFactoryDefault 2()",
    "StylesheetConstructionContextDefault(XSLTEngineImpl, XPathFactoryDefault 2, "
    "1024, 128, 128, 128, 32, 512)",
    "StylesheetExecutionContextDefault(XSLTEngineImpl, XSLTProcessorEnvSupportDefault, "
    "XalanSourceTreeDOMSupport, XObjectFactoryDefault, null, null, null)",
};

const Calls END_OF_CONTEXTS = {
    "~XSLTInputSource 2",
    "~StylesheetExecutionContextDefault",
    "~StylesheetConstructionContextDefault",
    "~XPathFactoryDefault 2",
    "~XSLTInputSource",
};

/** Writes a node as XML, without indentation and in the default encoding. */
const Calls WRITER = {
    "XalanStdOutputStream(stream)",
    "XalanOutputStreamPrintWriter(XalanStdOutputStream, false)",
    "FormatterToXML(XalanOutputStreamPrintWriter, \"\", false, 0, \"\", \"\", \"\", \"\", true, "
    "\"\", 1, true)",
    "FormatterTreeWalker(FormatterToXML)",
    "FormatterToXML.startDocument()",
    "FormatterTreeWalker.traverseSubtree(node)",
    "FormatterToXML.endDocument()",
    "~FormatterTreeWalker",
    "~FormatterToXML",
    "~XalanOutputStreamPrintWriter",
    "~XalanStdOutputStream",
};

Calls operator+(Calls first, const Calls& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::string installation(const std::string& uri, const std::string& name,
                         const std::string& function) {
    return "XSLTProcessorEnvSupportDefault.installExternalFunctionLocal(\"" + uri + "\", \"" +
           name + "\", " + function + ")";
}

class EngineOrderTest : public EngineTest {
protected:
    EngineOrderTest() {
        m_transformer.installExternalFunction("Constant", ConstantFunction("x"));
        m_transformer.setStylesheetParam("second", "two");
        m_transformer.setStylesheetParam("first", "one");
        m_in->InitializeInputSource("<a><b/></a>");
        m_record.name(m_in->GetDocument(), "input document");
        m_record.name(&m_stream, "stream");
        for (const auto& [name, function] : VEXAXslTransformerInspector::functions(m_transformer)) {
            m_record.name(static_cast<const xalanc::Function*>(function), name.c_str());
        }
        m_record.name(&VEXAXslTransformerInspector::engine(m_transformer), "XalanTransformer");
        m_record.take();
    }

    static Calls installations() {
        Calls calls = {
            "FunctionNodeSet(true)",
            installation("http://xml.apache.org/xalan", "nodeset", "FunctionNodeSet"),
            "~FunctionNodeSet",
        };
        for (const char* const name :
             {"Constant", "GetDateTime", "GetLocalizedString", "TimerCreate", "TimerDestroy",
              "TimerReset", "TimerStart", "TimerStop", "TimerTotal"}) {
            calls.push_back(installation(VEXA_XSL_EXTENSION_NAMESPACE, name, name));
        }
        return calls;
    }

    static Calls parseOf(const std::string& file) {
        return {"XSLTInputSource 2(\"" + file + "\")",
                "XalanSourceTreeParserLiaison.parseXMLStream(XSLTInputSource 2, \"\")"};
    }

    int transform(const std::string& stylesheetFile) {
        m_out->InitializeOutputTarget(m_stream);
        m_record.take();
        return m_transformer.doTransform(*m_in, stylesheetFile.c_str(), *m_out);
    }

    std::string calls() { return lines(m_record.take()); }

    TemporaryFolder m_folder;
    std::ostringstream m_stream;
    VEXAXslTransformer m_transformer;
    Dom2DomPtr m_in = m_transformer.createDom2Dom();
    Dom2DomPtr m_out = m_transformer.createDom2Dom();
    EngineCallRecord m_record;
};

} // namespace

TEST_F(EngineOrderTest, InMemoryTransform) {
    const std::string file = m_folder.write("sheet.xsl", stylesheetWithRootTemplate("<c/>"));
    ASSERT_EQ(transform(file), 0) << m_transformer.getLastError();
    const Calls run = {
        "XSLTInputSource 3(parsed stylesheet)",
        "XSLTInputSource 3.setSystemId(\"" + file + "\")",
        "XSLTEngineImpl.setStylesheetParam(\"first\", \"'one'\")",
        "XSLTEngineImpl.setStylesheetParam(\"second\", \"'two'\")",
        "XSLTInputSource.holds(input document)",
        "XSLTEngineImpl.process(XSLTInputSource, XSLTInputSource 3, XSLTResultTarget, "
        "StylesheetConstructionContextDefault, StylesheetExecutionContextDefault)",
        "~XSLTInputSource 3",
    };
    EXPECT_EQ(calls(), lines(SUPPORTS + installations() + ENGINE + CONTEXTS + parseOf(file) + run +
                             END_OF_CONTEXTS + END_OF_ENGINE));
}

TEST_F(EngineOrderTest, InMemoryTransformWithAMalformedStylesheet) {
    const std::string file = m_folder.write("sheet.xsl", "<a>");
    ASSERT_EQ(transform(file), -2);
    EXPECT_EQ(calls(), lines(SUPPORTS + installations() + ENGINE + CONTEXTS + parseOf(file) +
                             END_OF_CONTEXTS + END_OF_ENGINE));
}

TEST_F(EngineOrderTest, NothingIsCreatedAfterAFailedParseOfTheSource) {
    const Dom2DomPtr failed = m_transformer.createDom2Dom();
    failed->InitializeInputSource("<a>");
    m_out->InitializeOutputTarget(m_stream);
    m_record.take();
    EXPECT_EQ(m_transformer.doTransform(*failed, "none.xsl", *m_out), -2);
    EXPECT_EQ(m_transformer.doXPath(*failed, "/a", m_stream), -2);
    EXPECT_EQ(calls(), "");
}

namespace {

Calls queryOf(const std::string& expression) {
    return SUPPORTS + ENGINE +
           Calls{"XPathEvaluator()", "XalanDocumentPrefixResolver(input document, \"\")",
                 "XPathEvaluator.evaluate(XalanSourceTreeDOMSupport, input document, \"" +
                     expression + "\", XalanDocumentPrefixResolver)"};
}

const Calls END_OF_QUERY =
    Calls{"~result", "~XalanDocumentPrefixResolver", "~XPathEvaluator"} + END_OF_ENGINE;

} // namespace

TEST_F(EngineOrderTest, QueryForAString) {
    ASSERT_EQ(m_transformer.doXPath(*m_in, "string(name(/*))", m_stream), 0);
    EXPECT_EQ(calls(), lines(queryOf("string(name(/*))") + END_OF_QUERY));
    EXPECT_EQ(m_stream.str(), "a");
}

TEST_F(EngineOrderTest, QueryForANode) {
    m_record.name(m_in->GetDocument()->getDocumentElement()->getFirstChild(), "node");
    ASSERT_EQ(m_transformer.doXPath(*m_in, "/a/b", m_stream), 0);
    EXPECT_EQ(calls(), lines(queryOf("/a/b") + WRITER + END_OF_QUERY));
    EXPECT_EQ(m_stream.str(), "<b/>");
}

TEST_F(EngineOrderTest, QueryThatFails) {
    ASSERT_EQ(m_transformer.doXPath(*m_in, "/a[", m_stream), -1);
    const Calls end = {"~XalanDocumentPrefixResolver", "~XPathEvaluator"};
    EXPECT_EQ(calls(), lines(queryOf("/a[") + end + END_OF_ENGINE));
}

TEST_F(EngineOrderTest, DocumentOutput) {
    m_out->InitializeOutputTarget();
    EXPECT_EQ(calls(), lines({
                           "XalanTransformer.createDocumentBuilder(\"\")",
                           "FormatterToSourceTree(output document)",
                           "XSLTResultTarget(FormatterToSourceTree)",
                       }));
    m_out.reset();
    EXPECT_EQ(calls(), lines({
                           "XalanTransformer.destroyDocumentBuilder(document builder)",
                           "~FormatterToSourceTree",
                           "~XSLTResultTarget",
                       }));
}

TEST_F(EngineOrderTest, Serialization) {
    const std::string file = m_folder.write("sheet.xsl", stylesheetWithRootTemplate("<c/>"));
    m_out->InitializeOutputTarget();
    ASSERT_EQ(m_transformer.doTransform(*m_in, file.c_str(), *m_out), 0);
    m_record.take();
    m_record.name(m_out->GetDocument()->getDocumentElement(), "node");
    ASSERT_EQ(m_out->Serialize(m_stream), 0);
    EXPECT_EQ(calls(), lines(WRITER));
}

TEST_F(EngineOrderTest, Input) {
    std::istringstream source("<a/>");
    m_record.name(&source, "source");
    Dom2DomPtr document = m_transformer.createDom2Dom();
    ASSERT_TRUE(document->InitializeInputSource(source, "a.xml"));
    EXPECT_EQ(calls(), lines({
                           "XSLTInputSource(source)",
                           "XSLTInputSource.setSystemId(\"a.xml\")",
                           "XalanTransformer.parseSource(false)",
                           "~XSLTInputSource",
                       }));
    document.reset();
    EXPECT_EQ(calls(), "XalanTransformer.destroyParsedSource(parsed source)\n");
}
