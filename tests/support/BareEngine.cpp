#include "BareEngine.h"

#include <gtest/gtest.h>

#include <sstream>

#include <xalanc/XalanTransformer/XalanTransformer.hpp>

EngineResult runBareEngine(const std::string& source, const std::string& stylesheet,
                           const std::map<std::string, std::string>& params) {
    xalanc::XalanTransformer engine;
    for (const auto& [name, value] : params) {
        engine.setStylesheetParam(name.c_str(), ("'" + value + "'").c_str());
    }
    std::ostringstream output;
    const int code = engine.transform(source.c_str(), stylesheet.c_str(), output);
    return {code, output.str(), engine.getLastError()};
}

std::string bareEngineTransform(const std::string& source, const std::string& stylesheet,
                                const std::map<std::string, std::string>& params) {
    const EngineResult result = runBareEngine(source, stylesheet, params);
    EXPECT_EQ(result.code, 0) << result.error;
    return result.output;
}
