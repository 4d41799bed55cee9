/**
 * @file
 * A transformer and its documents in memory, over both kinds of tree.
 */
#pragma once

#include "EngineTest.h"
#include "TestFiles.h"

#include <vexa/Dom2Dom.h>
#include <vexa/VEXAXslTransformer.h>

#include <memory>
#include <sstream>
#include <string>

using Holder = std::unique_ptr<Dom2Dom>;

/** Whether documents are parsed into Xerces' tree or into the engine's own. */
enum class Tree { Xalan, Xerces };

class InMemoryTest : public EngineTest, public ::testing::WithParamInterface<Tree> {
protected:
    InMemoryTest() { VEXAXslTransformer::m_bUseXercesDOM = GetParam() == Tree::Xerces; }
    ~InMemoryTest() override { VEXAXslTransformer::m_bUseXercesDOM = false; }

    Holder parsed(const std::string& text) {
        Holder holder = m_transformer.createDom2Dom();
        EXPECT_TRUE(holder->InitializeInputSource(text.c_str())) << holder->getLastError();
        return holder;
    }

    Holder output() {
        Holder holder = m_transformer.createDom2Dom();
        EXPECT_TRUE(holder->InitializeOutputTarget());
        return holder;
    }

    Holder output(std::ostream& stream) {
        Holder holder = m_transformer.createDom2Dom();
        EXPECT_TRUE(holder->InitializeOutputTarget(stream));
        return holder;
    }

    std::string sheet(const std::string& rootTemplate) {
        return m_folder.write("sheet.xsl", stylesheetWithRootTemplate(rootTemplate));
    }

    int transform(Dom2Dom& in, const std::string& stylesheetFile, Dom2Dom& out) {
        return m_transformer.doTransform(in, stylesheetFile.c_str(), out);
    }

    /** What a stylesheet makes of a document, as text. */
    std::string transformed(Dom2Dom& in, const std::string& stylesheetFile) {
        std::ostringstream text;
        const Holder out = output(text);
        EXPECT_EQ(transform(in, stylesheetFile, *out), 0) << m_transformer.getLastError();
        return text.str();
    }

    /** The serialised document, as the library writes it. */
    static std::string serialized(Dom2Dom& holder) {
        std::ostringstream text;
        EXPECT_EQ(holder.Serialize(text), 0) << holder.getLastError();
        return text.str();
    }

    int query(Dom2Dom& holder, const std::string& expression, std::string& result) {
        std::ostringstream out;
        const int code = m_transformer.doXPath(holder, expression.c_str(), out);
        result = out.str();
        return code;
    }

    std::string queried(Dom2Dom& holder, const std::string& expression) {
        std::string result;
        EXPECT_EQ(query(holder, expression, result), 0)
            << expression << ": " << m_transformer.getLastError();
        return result;
    }

    TemporaryFolder m_folder;
    VEXAXslTransformer m_transformer;
};

/** What Serialize makes of a document element. */
inline std::string asSerialized(const std::string& element) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + element + "\n" + '\0';
}

#define OVER_BOTH_TREES(suite)                                                                     \
    INSTANTIATE_TEST_SUITE_P(                                                                      \
        , suite, ::testing::Values(Tree::Xalan, Tree::Xerces),                                     \
        [](const auto& test) { return test.param == Tree::Xalan ? "XalanTree" : "XercesTree"; })
