/**
 * @file
 * Room in the node lists of the engine.
 */
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

#include <xalanc/XPath/MutableNodeRefList.hpp>

/**
 * The node lists that the engine has borrowed. For each node of a path's step it borrows a list,
 * and appends what it finds to the list before the last one, which has room for exactly that: each
 * time all of it is copied. Here that list gets room for twice as many in time.
 */
class BorrowedLists {
public:
    void add(xalanc::MutableNodeRefList* list) {
        if (m_lists.size() > 1) {
            makeRoom(*(m_lists.end() - 2));
        }
        m_lists.emplace_back(list);
    }

    void remove(const xalanc::MutableNodeRefList* list) {
        // It is nearly always the last one. Those that values have live longer.
        const auto found = std::find_if(m_lists.rbegin(), m_lists.rend(),
                                        [list](const Borrowed& some) { return some.list == list; });
        if (found != m_lists.rend()) {
            m_lists.erase(std::prev(found.base()));
        }
    }

    void clear() { m_lists.clear(); }

private:
    static constexpr std::size_t SMALL = 64;

    struct Borrowed {
        explicit Borrowed(xalanc::MutableNodeRefList* borrowed) : list(borrowed) {}

        xalanc::MutableNodeRefList* list;
        std::size_t room = SMALL;
    };

    static void makeRoom(Borrowed& borrowed) {
        const std::size_t length = borrowed.list->getLength();
        if (length > borrowed.room / 4 * 3) {
            borrowed.room = length * 2;
            borrowed.list->reserve(borrowed.room);
        }
    }

    std::vector<Borrowed> m_lists;
};
