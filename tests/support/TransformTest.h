/**
 * @file
 * A transformer, a folder of its own, and both roads through it.
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

    /** Transforms files; the output is empty where no file was written. */
    Outcome onFileRoad(const std::string& source, const std::string& sheet) {
        const std::string output = m_folder.path("file-road.out");
        std::filesystem::remove(output);
        const int result = m_transformer.doTransform(source.c_str(), sheet.c_str(), output.c_str());
        return {result, std::filesystem::exists(output) ? readFile(output) : "",
                m_transformer.getLastError()};
    }

    /** Transforms streams; the output is as the library leaves it, with its NUL. */
    Outcome onStreamRoad(const std::string& sourceText, const std::string& sheet) {
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

/** A stream result as the library writes it. */
inline std::string withNul(const std::string& text) {
    return text + '\0';
}
