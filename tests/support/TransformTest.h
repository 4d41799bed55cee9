/**
 * @file
 * Test fixture for file and stream transforms, with a transformer and a temporary folder.
 */
#pragma once

#include "EngineTest.h"
#include "TestFiles.h"

#include <vexa/VEXAXslTransformer.h>

#include <sstream>
#include <string>

class TransformTest : public EngineTest {
protected:
    struct Outcome {
        int result;
        std::string output;
        std::string error;
    };

    /** Runs a file transform. The output is empty if no file was written. */
    Outcome transformFile(const std::string& source, const std::string& sheet) {
        const std::string output = m_folder.path("output");
        std::filesystem::remove(output);
        const int result = m_transformer.doTransform(source.c_str(), sheet.c_str(), output.c_str());
        return {result, std::filesystem::exists(output) ? readFile(output) : "",
                m_transformer.getLastError()};
    }

    /** Runs a stream transform. The output includes the NUL. */
    Outcome transformStream(const std::string& sourceText, const std::string& sheet) {
        std::istringstream source(sourceText);
        std::ostringstream output;
        const int result = m_transformer.doTransform(source, sheet.c_str(), output);
        return {result, output.str(), m_transformer.getLastError()};
    }

    std::string sheetWithRootTemplate(const std::string& content) {
        return m_folder.write("sheet.xsl", stylesheetWithRootTemplate(content));
    }

    std::string source(const std::string& content = "<a>x</a>") {
        return m_folder.write("source.xml", content);
    }

    TemporaryFolder m_folder;
    VEXAXslTransformer m_transformer;
};

/** The output of a stream transform. */
inline std::string withNul(const std::string& text) {
    return text + '\0';
}
