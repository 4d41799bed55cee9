#include "BareEngine.h"

#include <gtest/gtest.h>

#include <sstream>

#include <xalanc/XalanTransformer/XalanTransformer.hpp>

std::string bareEngineTransform(const std::string& source, const std::string& stylesheet,
                                const std::map<std::string, std::string>& params) {
    xalanc::XalanTransformer engine;
    for (const auto& [name, value] : params) {
        engine.setStylesheetParam(name.c_str(), ("'" + value + "'").c_str());
    }
    std::ostringstream result;
    EXPECT_EQ(engine.transform(source.c_str(), stylesheet.c_str(), result), 0)
        << engine.getLastError();
    return result.str();
}
