// The costs of a call of each built-in function, of the two string conversions, and of each stored
// parameter and function in a transform.
#include "support/BareEngine.h"
#include "support/Work.h"

#include <vexa/VEXAXslTransformer.h>

#include <benchmark/benchmark.h>
#include <fstream>
#include <memory>
#include <sstream>

#include <xalanc/XSLT/XSLTInputSource.hpp>
#include <xalanc/XSLT/XSLTResultTarget.hpp>

namespace {

/** The namespace of the functions that return a fixed text. */
constexpr const char* FIXED_NAMESPACE = "http://vexa.example/fixed";

struct Function {
    const char* name;
    const char* arguments;
    /** As long as a typical result of the function. */
    const char* result;
};

constexpr Function FUNCTIONS[] = {{"GetLocalizedString", "$timer, $lang", "Authentication failed"},
                                  {"GetDateTime", "", "14:03:27.095"},
                                  {"TimerCreate", "", "100"},
                                  {"TimerStart", "$timer", "1000000000"},
                                  {"TimerStop", "$timer", "   1.500"},
                                  {"TimerTotal", "$timer", "   1.500"},
                                  {"TimerReset", "$timer", "   1.500"},
                                  {"TimerDestroy", "$timer", "   1.500"}};

/** A stylesheet that evaluates an expression for each of the source's rows. */
std::string writeStylesheet(const std::string& folder, const std::string& name,
                            const std::string& expression) {
    const std::string file = folder + "/call-" + name + ".xsl";
    std::ofstream(file) << R"(<xsl:stylesheet version="1.0")"
                           R"( xmlns:xsl="http://www.w3.org/1999/XSL/Transform")"
                           R"( xmlns:fixed=")"
                        << FIXED_NAMESPACE << R"(" xmlns:vexa=")" << VEXA_XSL_EXTENSION_NAMESPACE
                        << R"("><xsl:output method="text"/>)"
                           R"(<xsl:variable name="timer" select="'1'"/>)"
                           R"(<xsl:variable name="lang" select="'de'"/>)"
                           R"(<xsl:template match="/"><xsl:for-each select="/rows/row">)"
                           R"(<xsl:value-of select=")"
                        << expression << R"("/></xsl:for-each></xsl:template></xsl:stylesheet>)";
    return file;
}

std::size_t transform(VEXAXslTransformer& transformer, const std::string& source,
                      const std::string& stylesheet) {
    std::istringstream input(source);
    std::ostringstream output;
    require(transformer.doTransform(input, stylesheet.c_str(), output) == 0,
            transformer.getLastError());
    return output.str().size() - 1;
}

Work callWork(const std::string& folder, const std::string& name, const std::string& expression) {
    const std::string stylesheet = writeStylesheet(folder, name, expression);
    const std::string source = readFile(folder + "/rows-calls.xml");
    return {name,
            [stylesheet, source] {
                const auto transformer = std::make_shared<VEXAXslTransformer>();
                return [transformer, source, stylesheet] {
                    return transform(*transformer, source, stylesheet);
                };
            },
            Work::KEEPS_SOURCES};
}

/** Each built-in function, the same call of a function with a fixed text, and no call. */
void addCalls(Works& works, const std::string& folder) {
    works.push_back(callWork(folder, "no-call", "'x'"));
    for (const Function& function : FUNCTIONS) {
        const std::string call = std::string(function.name) + "(" + function.arguments + ")";
        xalanc::XalanTransformer::installExternalFunctionGlobal(
            xalanc::XalanDOMString(FIXED_NAMESPACE), xalanc::XalanDOMString(function.name),
            FixedFunction(function.result));
        works.push_back(callWork(folder, std::string("fixed-") + function.name, "fixed:" + call));
        works.push_back(callWork(folder, std::string("vexa-") + function.name, "vexa:" + call));
    }
}

constexpr int CONVERSIONS = 1000;

Work::Call viewAsUtf16(std::size_t length) {
    return [text = std::u16string(length, u'x')] {
        const char16_t* utf16 = nullptr;
        for (int i = 0; i < CONVERSIONS; ++i) {
            I18NExternalBufferToUTF16(utf16, text.c_str(), false);
            benchmark::DoNotOptimize(utf16);
        }
        return text.size();
    };
}

Work::Call viewAsExternal(std::size_t length) {
    return [text = std::u16string(length, u'x')] {
        const void* external = nullptr;
        for (int i = 0; i < CONVERSIONS; ++i) {
            I18NUTF16ToExternalBuffer(external, text.c_str(), false);
            benchmark::DoNotOptimize(external);
        }
        return text.size();
    };
}

void addConversions(Works& works) {
    for (const std::size_t length : {100, 1100}) {
        const std::string characters = " " + std::to_string(length);
        works.push_back({"to-utf16" + characters, [length] { return viewAsUtf16(length); }});
        works.push_back({"to-external" + characters, [length] { return viewAsExternal(length); }});
    }
}

std::string entryName(int number) {
    return "entry-" + std::to_string(number);
}

struct Replay {
    std::string source;
    std::string stylesheet;
    int parameters;
    int functions;
};

/** A transformer with parameters and functions, in addition to the built-in functions. */
Work::Call facadeReplay(const Replay& replay) {
    const auto transformer = std::make_shared<VEXAXslTransformer>();
    for (int i = 0; i < replay.parameters; ++i) {
        transformer->setStylesheetParam(entryName(i).c_str(), "value");
    }
    for (int i = 0; i < replay.functions; ++i) {
        transformer->installExternalFunction(entryName(i).c_str(), FixedTqFunction());
    }
    return
        [transformer, replay] { return transform(*transformer, replay.source, replay.stylesheet); };
}

std::size_t transform(xalanc::XalanTransformer& engine, const Replay& replay) {
    std::istringstream input(replay.source);
    std::ostringstream output;
    transformKept(engine, &input, replay.stylesheet, output);
    return output.str().size();
}

/** The engine with the same parameters and functions, set once: the engine stores them too. */
Work::Call bareReplay(const Replay& replay) {
    const auto engine = std::make_shared<BareEngine>();
    for (int i = 0; i < replay.parameters; ++i) {
        engine->setStylesheetParam(entryName(i).c_str(), "'value'");
    }
    for (int i = 0; i < replay.functions; ++i) {
        engine->installExternalFunction(xalanc::XalanDOMString(VEXA_XSL_EXTENSION_NAMESPACE),
                                        xalanc::XalanDOMString(entryName(i).c_str()),
                                        FixedFunction("x"));
    }
    return [engine, replay] { return transform(*engine, replay); };
}

/** The engine's costs of the built-in functions: a transform without functions ... */
Work::Call bareWithoutFunctions(const Replay& replay) {
    const auto engine = std::make_shared<xalanc::XalanTransformer>();
    return [engine, replay] { return transform(*engine, replay); };
}

/** ... and a transform that installs them each time, as the library does. */
Work::Call bareInstallingEachTime(const Replay& replay) {
    const auto engine = std::make_shared<xalanc::XalanTransformer>();
    return [engine, replay, functions = Functions()] {
        functions.installIn(*engine);
        return transform(*engine, replay);
    };
}

constexpr int ENTRIES = 40;

void addReplays(Works& works, const std::string& folder) {
    const Replay none{readFile(folder + "/rows-tiny.xml"), folder + "/table.xsl", 0, 0};
    Replay parameters = none;
    parameters.parameters = ENTRIES;
    Replay functions = none;
    functions.functions = ENTRIES;
    const auto add = [&works](const char* name, Work::Call (*prepare)(const Replay&),
                              const Replay& replay) {
        works.push_back({name, [prepare, replay] { return prepare(replay); }, Work::KEEPS_SOURCES});
    };
    add("facade-replay none", facadeReplay, none);
    add("facade-replay parameters", facadeReplay, parameters);
    add("facade-replay functions", facadeReplay, functions);
    add("bare-replay none", bareReplay, none);
    add("bare-replay parameters", bareReplay, parameters);
    add("bare-replay functions", bareReplay, functions);
    add("bare-without-functions", bareWithoutFunctions, none);
    add("bare-installing", bareInstallingEachTime, none);
}

} // namespace

Works makeWorks(const std::string& folder) {
    static const Library library; // until the program ends
    Works works;
    addCalls(works, folder);
    addConversions(works);
    addReplays(works, folder);
    return works;
}
