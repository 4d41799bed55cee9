/**
 * @file
 * Test fixture with a transformer and its in-memory documents, for Xalan source trees and Xerces
 * DOMs.
 */
#pragma once

#include "EngineTest.h"
#include "TestFiles.h"

#include <vexa/Dom2Dom.h>
#include <vexa/VEXAXslTransformer.h>

#include <memory>
#include <sstream>
#include <string>

using Dom2DomPtr = std::unique_ptr<Dom2Dom>;

/** The data structure of parsed documents: Xalan source tree or Xerces DOM. */
enum class Tree { Xalan, Xerces };

class InMemoryTest : public EngineTest, public ::testing::WithParamInterface<Tree> {
protected:
    InMemoryTest() { VEXAXslTransformer::m_bUseXercesDOM = GetParam() == Tree::Xerces; }
    ~InMemoryTest() override { VEXAXslTransformer::m_bUseXercesDOM = false; }

    Dom2DomPtr parsed(const std::string& text) {
        Dom2DomPtr document = m_transformer.createDom2Dom();
        EXPECT_TRUE(document->InitializeInputSource(text.c_str())) << document->getLastError();
        return document;
    }

    Dom2DomPtr output() {
        Dom2DomPtr document = m_transformer.createDom2Dom();
        EXPECT_TRUE(document->InitializeOutputTarget());
        return document;
    }

    Dom2DomPtr output(std::ostream& stream) {
        Dom2DomPtr document = m_transformer.createDom2Dom();
        EXPECT_TRUE(document->InitializeOutputTarget(stream));
        return document;
    }

    std::string sheet(const std::string& rootTemplate) {
        return m_folder.write("sheet.xsl", stylesheetWithRootTemplate(rootTemplate));
    }

    int transform(Dom2Dom& in, const std::string& stylesheetFile, Dom2Dom& out) {
        return m_transformer.doTransform(in, stylesheetFile.c_str(), out);
    }

    /** The result of a transform as text. */
    std::string transformed(Dom2Dom& in, const std::string& stylesheetFile) {
        std::ostringstream text;
        const Dom2DomPtr out = output(text);
        EXPECT_EQ(transform(in, stylesheetFile, *out), 0) << m_transformer.getLastError();
        return text.str();
    }

    /** The complete output of Serialize(). */
    static std::string serialized(Dom2Dom& document) {
        std::ostringstream text;
        EXPECT_EQ(document.Serialize(text), 0) << document.getLastError();
        return text.str();
    }

    int query(Dom2Dom& document, const std::string& expression, std::string& result) {
        std::ostringstream out;
        const int code = m_transformer.doXPath(document, expression.c_str(), out);
        result = out.str();
        return code;
    }

    std::string queried(Dom2Dom& document, const std::string& expression) {
        std::string result;
        EXPECT_EQ(query(document, expression, result), 0)
            << expression << ": " << m_transformer.getLastError();
        return result;
    }

    TemporaryFolder m_folder;
    VEXAXslTransformer m_transformer;
};

/** The complete output of Serialize() for a document element. */
inline std::string asSerialized(const std::string& element) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + element + "\n" + '\0';
}

#define INSTANTIATE_FOR_BOTH_TREES(suite)                                                          \
    INSTANTIATE_TEST_SUITE_P(                                                                      \
        , suite, ::testing::Values(Tree::Xalan, Tree::Xerces), [](const auto& test) {              \
            return test.param == Tree::Xalan ? "XalanSourceTree" : "XercesDom";                    \
        })
