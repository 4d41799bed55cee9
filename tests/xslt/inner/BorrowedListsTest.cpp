#include "xslt/BorrowedLists.h"
#include "xslt/DocumentData.h"

#include "support/CountingMemoryManager.h"

#include <vexa/xslt/Document.h>

#include <gtest/gtest.h>

#include <string>

#include <xalanc/XPath/XObjectFactoryDefault.hpp>
#include <xalanc/XPath/XPathEnvSupportDefault.hpp>
#include <xalanc/XPath/XPathExecutionContextDefault.hpp>
#include <xalanc/XalanDOM/XalanNode.hpp>
#include <xalanc/XalanSourceTree/XalanSourceTreeDOMSupport.hpp>

using xalanc::MutableNodeRefList;

namespace {

class BorrowedListsTest : public ::testing::Test {
protected:
    /** As the engine does with a path: the nodes of each step are appended to one list. */
    void append(BorrowedLists* borrowed) {
        xalanc::XPathEnvSupportDefault environment(m_memory);
        xalanc::XalanSourceTreeDOMSupport trees;
        xalanc::XObjectFactoryDefault objects(m_memory);
        xalanc::XPathExecutionContextDefault context(environment, trees, objects);
        MutableNodeRefList all(m_memory);
        MutableNodeRefList ofTheStepBefore(m_memory);
        if (borrowed) {
            borrowed->add(&all);
            borrowed->add(&ofTheStepBefore);
        }
        xalanc::XalanNode* node = m_node->getFirstChild()->getFirstChild();
        while (node) {
            MutableNodeRefList step(m_memory);
            if (borrowed) {
                borrowed->add(&step);
            }
            for (int i = 0; i < 2; ++i) {
                step.addNode(node);
                node = node->getNextSibling();
            }
            step.setDocumentOrder();
            all.addNodesInDocOrder(step, context);
            if (borrowed) {
                borrowed->remove(&step);
            }
        }
        EXPECT_EQ(all.getLength(), 2 * STEPS);
    }

    static std::string source() {
        std::string text = "<a>";
        for (std::size_t i = 0; i < STEPS; ++i) {
            text += "<b/><b/>";
        }
        return text + "</a>";
    }

    static constexpr std::size_t STEPS = 5000;
    CountingMemoryManager m_memory;
    const vexa::Document m_document = vexa::Document::parse(vexa::Input::text(source()));
    xalanc::XalanNode* const m_node = vexa::NodeAccess::node(m_document.root());
};

} // namespace

TEST_F(BorrowedListsTest, GetRoomInTime) {
    append(nullptr);
    // Two for the list of each step, and one for room in the other.
    const auto without = m_memory.allocations();
    EXPECT_GE(without, 3 * STEPS);
    BorrowedLists borrowed;
    append(&borrowed);
    EXPECT_LE(m_memory.allocations() - without, 2 * STEPS + 100);
}

TEST_F(BorrowedListsTest, MayBeReturnedInAnyOrder) {
    MutableNodeRefList first(m_memory);
    MutableNodeRefList second(m_memory);
    MutableNodeRefList third(m_memory);
    BorrowedLists borrowed;
    borrowed.add(&first);
    borrowed.add(&second);
    borrowed.remove(&first);
    borrowed.remove(&first); // unknown by now
    for (int i = 0; i < 100; ++i) {
        second.addNode(m_node);
    }
    borrowed.add(&third);
    const auto before = m_memory.allocations();
    borrowed.add(&first); // gives the second one room
    EXPECT_EQ(m_memory.allocations(), before + 1);
    for (int i = 0; i < 100; ++i) {
        second.addNode(m_node);
    }
    EXPECT_EQ(m_memory.allocations(), before + 1);
}
