/**
 * @file
 * When the engines begin and end: both interfaces in one process, hosts that use the engines
 * themselves, objects that outlive main. Each scenario needs a process of its own:
 *
 *     xslt_lifetime SCENARIO
 */
#include "support/CountingMemoryManager.h"

#include <vexa/Dom2Dom.h>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>
#include <vexa/xslt.h>

#include <dlfcn.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include <xercesc/util/PlatformUtils.hpp>

namespace {

/** A host's memory manager lives as long as the engines may. */
CountingMemoryManager hostMemory; // NOLINT(cert-err58-cpp)

/** Made empty before main, filled in main, destroyed after it. */
vexa::Document staticDocument;
vexa::Stylesheet staticStylesheet;
vexa::XPath staticExpression;
vexa::Node staticNode;
std::optional<vexa::Value> staticValue;
std::optional<vexa::Error> staticError;
std::unique_ptr<vexa::Transformation> staticTransformation;

void check(bool isTrue, const char* what) {
    if (!isTrue) {
        std::cerr << "not true: " << what << '\n';
        std::_Exit(EXIT_FAILURE); // also after main
    }
}

#define CHECK(condition) check(condition, #condition)

const char* const SHEET =
    "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
    "<xsl:output omit-xml-declaration='yes' encoding='UTF-8' media-type='text/xml'/>"
    "<xsl:template match='/'><b><xsl:for-each select='//i'><xsl:sort select='.'/>"
    "<xsl:value-of select='format-number(., \"0.0\")'/>,</xsl:for-each></b></xsl:template>"
    "</xsl:stylesheet>";
const char* const SOURCE = "<a><i>2</i><i>1</i></a>";
const char* const RESULT = "<b>1.0,2.0,</b>";

vexa::Stylesheet compileSheet() {
    return vexa::Stylesheet::compile(vexa::Input::text(SHEET));
}

vexa::Document parseSource() {
    return vexa::Document::parse(vexa::Input::text(SOURCE));
}

/** What gives a text reports the end of the engines' memory as std::bad_alloc. */
void useWithLittleMemory() {
    const vexa::Document document = parseSource();
    const vexa::Stylesheet stylesheet = compileSheet();
    const vexa::Value value = vexa::XPath::compile("/").evaluate(document);
    const std::function<void()> operations[] = {
        [&] { CHECK(document.root().string() == "21"); }, [&] { CHECK(document.xml() == SOURCE); },
        [&] { CHECK(value.number() == 21); }, [&] { CHECK(stylesheet.encoding() == "UTF-8"); },
        [&] { CHECK(stylesheet.mediaType() == "text/xml"); }};
    for (const auto& operation : operations) {
        for (std::size_t left = 0;; ++left) {
            hostMemory.failAfter(left);
            try {
                operation();
                hostMemory.stopFailing();
                break;
            } catch (const std::bad_alloc&) {
                hostMemory.stopFailing();
            }
        }
    }
}

void useSecond() {
    CHECK(vexa::Transformation(compileSheet()).toString(parseSource()) == RESULT);
    CHECK(vexa::XPath::compile("sum(//i)").evaluate(parseSource()).number() == 3);
    try {
        vexa::Document::parse(vexa::Input::text("<a>"));
        CHECK(!"parsed");
    } catch (const vexa::Error& error) {
        CHECK(error.kind() == vexa::ErrorKind::Parse);
    }
}

/** What another process packed is all that there is. */
void unpackFirst() {
    const std::u16string record(u"\xD\0vexa-record-1\0\5\0mem:a\0" // the lengths before the texts
                                u"\1\0\0\0\1\0x\0\5\0CDATA\0\1\0001\0"
                                u"\2\0\0\0\1\0r\0\3",
                                53);
    const std::string bytes(reinterpret_cast<const char*>(record.data()),
                            record.size() * sizeof(char16_t));
    CHECK(vexa::Records::unpack(bytes).xml() == "<r x=\"1\"/>");
}

void useClassic() {
    VEXAXslTransformer transformer;
    const auto in = transformer.createDom2Dom();
    std::ostringstream value;
    CHECK(in->InitializeInputSource(SOURCE));
    CHECK(transformer.doXPath(*in, "string(sum(//i))", value) == 0);
    CHECK(value.str().find('3') != std::string::npos);
}

void initializeClassic() {
    TQXslTransformer_Initialize(nullptr);
}

void terminateClassic() {
    TQXslTransformer_Terminate(nullptr);
}

/** Objects of every class, used with one another. */
class Objects {
public:
    void use() {
        CHECK(m_run.toString(m_document) == RESULT);
        CHECK(m_run.toString(vexa::Input::text(SOURCE)) == RESULT);
        CHECK(m_expression.evaluate(m_document).number() == 3);
    }

private:
    vexa::Document m_document = parseSource();
    vexa::XPath m_expression = vexa::XPath::compile("sum(//i)");
    vexa::Transformation m_run{compileSheet()};
};

void fillStaticObjects() {
    staticDocument = parseSource();
    staticStylesheet = compileSheet();
    staticExpression = vexa::XPath::compile("//i");
    staticNode = staticDocument.root();
    staticValue = staticExpression.evaluate(staticDocument);
    staticTransformation = std::make_unique<vexa::Transformation>(staticStylesheet);
    CHECK(staticTransformation->toString(staticDocument) == RESULT);
    try {
        vexa::Document::parse(vexa::Input::text("<a>"));
    } catch (const vexa::Error& error) {
        staticError = error;
    }
}

/** Runs when main has ended, and when the library has given up its own share. */
struct AfterMain {
    ~AfterMain() {
        if (run) {
            run();
        }
    }
    std::function<void()> run;
} afterMain;

/** A library that uses the interface, loaded and unloaded. */
void usePlugin() {
    void* const plugin = ::dlopen(XSLT_PLUGIN, RTLD_NOW | RTLD_LOCAL);
    if (!plugin) {
        std::cerr << ::dlerror() << '\n';
        std::exit(EXIT_FAILURE);
    }
    const auto run = reinterpret_cast<int (*)()>(::dlsym(plugin, "runPlugin"));
    CHECK(run != nullptr);
    CHECK(run() == 0);
    CHECK(::dlclose(plugin) == 0);
}

const std::map<std::string, std::function<void()>> SCENARIOS{
    {"Second", useSecond},
    {"SecondTwice",
     [] {
         useSecond();
         useSecond();
     }},
    {"RecordUnpackedFirst", unpackFirst},
    {"ClassicBefore",
     [] {
         initializeClassic();
         useClassic();
         terminateClassic();
         useSecond();
     }},
    {"ClassicAfter",
     [] {
         useSecond();
         initializeClassic();
         useClassic();
         terminateClassic();
     }},
    {"ClassicInside",
     [] {
         Objects objects;
         objects.use();
         for (int i = 0; i < 3; ++i) {
             initializeClassic();
             useClassic();
             terminateClassic();
             objects.use();
         }
     }},
    {"ClassicAround",
     [] {
         initializeClassic();
         {
             Objects objects;
             objects.use();
             useClassic();
         }
         useClassic();
         terminateClassic();
     }},
    {"ClassicEndsFirst",
     [] {
         initializeClassic();
         Objects objects;
         useClassic();
         terminateClassic();
         objects.use();
         initializeClassic();
         useClassic();
         terminateClassic();
         objects.use();
     }},
    {"ClassicNeverEnds",
     [] {
         initializeClassic();
         useSecond();
         useClassic();
     }},
    {"ClassicEndedTooOftenBefore",
     [] {
         terminateClassic();
         terminateClassic();
         useSecond();
         Objects objects;
         initializeClassic();
         useClassic();
         terminateClassic();
         objects.use();
     }},
    {"ClassicEndedTooOftenAfterItBegan",
     [] {
         initializeClassic();
         useClassic();
         terminateClassic();
         terminateClassic();
         terminateClassic();
         useSecond();
     }},
    {"XercesOfTheHost",
     [] {
         xercesc::XMLPlatformUtils::Initialize();
         useSecond();
         Objects objects;
         xercesc::XMLPlatformUtils::Terminate();
         objects.use();
         useSecond();
     }},
    {"XercesOfTheHostInside",
     [] {
         Objects objects;
         xercesc::XMLPlatformUtils::Initialize();
         objects.use();
         xercesc::XMLPlatformUtils::Terminate();
         objects.use();
     }},
    {"XercesOfTheHostWithItsMemory",
     [] {
         xercesc::XMLPlatformUtils::Initialize("en_US", nullptr, nullptr, &hostMemory);
         useSecond();
         Objects objects;
         objects.use();
         CHECK(hostMemory.allocations() > 0);
         CHECK(hostMemory.foreignBlocks() == 0);
         xercesc::XMLPlatformUtils::Terminate();
         objects.use();
     }},
    {"XercesOfTheHostWithLittleMemory",
     [] {
         xercesc::XMLPlatformUtils::Initialize("en_US", nullptr, nullptr, &hostMemory);
         useWithLittleMemory();
         useSecond();
         xercesc::XMLPlatformUtils::Terminate();
     }},
    {"StaticObjects", fillStaticObjects},
    {"StaticObjectsWithClassic",
     [] {
         initializeClassic();
         fillStaticObjects();
         useClassic();
         terminateClassic();
     }},
    {"StaticObjectsAfterClassicEndedTooOften",
     [] {
         terminateClassic();
         fillStaticObjects();
     }},
    {"FirstUsedAfterMain", [] { afterMain.run = useSecond; }},
    {"UsedAfterMainNextToStaticObjects",
     [] {
         fillStaticObjects();
         afterMain.run = [] {
             CHECK(staticTransformation->toString(staticDocument) == RESULT);
             useSecond();
             Objects().use();
         };
     }},
    // The engines cannot be initialized again.
    {"UsedAfterMainWithoutAnObject",
     [] {
         useSecond();
         afterMain.run = [] {
             try {
                 parseSource();
                 CHECK(!"parsed");
             } catch (const vexa::Error& error) {
                 CHECK(error.kind() == vexa::ErrorKind::Usage);
             }
         };
     }},
    {"LoadedAndUnloaded",
     [] {
         usePlugin();
         usePlugin();
     }},
    {"LoadedAndUnloadedNextToClassic",
     [] {
         initializeClassic();
         usePlugin();
         useClassic();
         terminateClassic();
         usePlugin();
     }},
};

} // namespace

int main(int argc, char* argv[]) {
    const auto scenario = SCENARIOS.find(argc == 2 ? argv[1] : "");
    if (scenario == SCENARIOS.end()) {
        for (const auto& known : SCENARIOS) {
            std::cerr << known.first << '\n';
        }
        return EXIT_FAILURE;
    }
    scenario->second();
    return EXIT_SUCCESS;
}
