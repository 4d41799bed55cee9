/**
 * @file
 * Documents with their stylesheets.
 */
#pragma once

#include "TestFiles.h"

#include <ostream>
#include <string>
#include <vector>

struct TestDocument {
    const char* name;
    std::string source;
    std::string sheet;
};

inline std::ostream& operator<<(std::ostream& stream, const TestDocument& document) {
    return stream << document.name;
}

inline std::vector<TestDocument> testDocuments() {
    return {
        {"Orders", projectFile("samples/orders.xml"), projectFile("samples/report.xsl")},
        {"SmallOrders", projectFile("samples/orders-small.xml"), projectFile("samples/report.xsl")},
        {"DocBook", projectFile("tests/data/handbook.xml"), DOCBOOK_XSL},
    };
}
