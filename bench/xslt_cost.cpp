// The second interface compared with the engine and with libxslt, each used in its best way: a
// compiled stylesheet, and sources that are freed. A call parses a file, transforms it and writes a
// file.
#include "support/Work.h"

#include <vexa/xslt.h>

#include <memory>

#include <libxslt/transform.h>
#include <libxslt/xsltutils.h>
#include <xalanc/XSLT/XSLTInputSource.hpp>
#include <xalanc/XSLT/XSLTResultTarget.hpp>
#include <xalanc/XalanTransformer/XalanCompiledStylesheet.hpp>
#include <xalanc/XalanTransformer/XalanParsedSource.hpp>
#include <xalanc/XalanTransformer/XalanTransformer.hpp>

namespace {

struct Files {
    std::string source;
    std::string stylesheet;
    std::string output;

    std::size_t resultSize() const { return readFile(output).size(); }
};

// ---- The second interface ----

Work::Call vexaFiles(const Files& files) {
    vexa::Options options;
    options.access.externalEntities = true; // the DocBook stylesheets have some
    const auto run = std::make_shared<vexa::Transformation>(
        vexa::Stylesheet::compile(vexa::Input::file(files.stylesheet), options), options);
    return
        [run, input = vexa::Input::file(files.source), output = vexa::Output::file(files.output)] {
            run->to(input, output);
            return std::size_t{0};
        };
}

Work::Call vexaCompile(const Files& files) {
    return [input = vexa::Input::file(files.stylesheet)] {
        vexa::Stylesheet::compile(input);
        return std::size_t{0};
    };
}

Work::Call vexaParse(const std::string& file) {
    return [input = vexa::Input::file(file)] {
        vexa::Document::parse(input);
        return std::size_t{0};
    };
}

/** @param document is shared by all threads, and so is the stylesheet */
Work::Call vexaShared(const vexa::Document& document, const vexa::Stylesheet& stylesheet) {
    const auto run = std::make_shared<vexa::Transformation>(stylesheet);
    return [run, document] { return run->toString(document).size(); };
}

// ---- The engine ----

Work::Call bareFiles(const Files& files) {
    const auto engine = std::make_shared<xalanc::XalanTransformer>();
    const xalanc::XalanCompiledStylesheet* compiled = nullptr;
    require(engine->compileStylesheet(files.stylesheet.c_str(), compiled) == 0,
            engine->getLastError());
    return [engine, compiled, files] {
        const xalanc::XalanParsedSource* parsed = nullptr;
        require(engine->parseSource(files.source.c_str(), parsed) == 0 &&
                    engine->transform(*parsed, compiled, files.output.c_str()) == 0,
                engine->getLastError());
        engine->destroyParsedSource(parsed);
        return std::size_t{0};
    };
}

Work::Call bareCompile(const Files& files) {
    const auto engine = std::make_shared<xalanc::XalanTransformer>();
    return [engine, files] {
        const xalanc::XalanCompiledStylesheet* compiled = nullptr;
        require(engine->compileStylesheet(files.stylesheet.c_str(), compiled) == 0,
                engine->getLastError());
        engine->destroyStylesheet(compiled);
        return std::size_t{0};
    };
}

// ---- libxslt ----

xsltStylesheetPtr compileByLibxslt(const Files& files) {
    const auto stylesheet =
        xsltParseStylesheetFile(reinterpret_cast<const xmlChar*>(files.stylesheet.c_str()));
    require(stylesheet != nullptr, files.stylesheet);
    return stylesheet;
}

Work::Call libxsltFiles(const Files& files) {
    const std::shared_ptr<xsltStylesheet> stylesheet(compileByLibxslt(files), xsltFreeStylesheet);
    return [stylesheet, files] {
        const xmlDocPtr source = xmlReadFile(files.source.c_str(), nullptr, XML_PARSE_NOENT);
        const xmlDocPtr result = xsltApplyStylesheet(stylesheet.get(), source, nullptr);
        require(result && xsltSaveResultToFilename(files.output.c_str(), result, stylesheet.get(),
                                                   0) >= 0,
                files.source);
        xmlFreeDoc(result);
        xmlFreeDoc(source);
        return std::size_t{0};
    };
}

Work::Call libxsltCompile(const Files& files) {
    return [files] {
        xsltFreeStylesheet(compileByLibxslt(files));
        return std::size_t{0};
    };
}

struct Program {
    const char* name;
    Work::Call (*files)(const Files&);
    Work::Call (*compile)(const Files&);
};

constexpr Program PROGRAMS[] = {{"vexa", vexaFiles, vexaCompile},
                                {"bare", bareFiles, bareCompile},
                                {"libxslt", libxsltFiles, libxsltCompile}};

} // namespace

/** Of work that takes seconds under callgrind. */
constexpr int FEW_CALLS = 2;

Works makeWorks(const std::string& folder) {
    struct Task {
        const char* name;
        std::string source;
        std::string stylesheet;
    };
    const Task tasks[] = {{"files tiny", folder + "/rows-tiny.xml", folder + "/row.xsl"},
                          {"files ten", folder + "/rows-ten.xml", folder + "/rows.xsl"},
                          {"files medium", folder + "/rows-medium.xml", folder + "/rows.xsl"},
                          {"files numbers", folder + "/rows-calls.xml", folder + "/numbers.xsl"},
                          {"nodes", folder + "/rows-large.xml", folder + "/nodes.xsl"},
                          {"book", folder + "/book.xml", DOCBOOK_XSL}};
    Works works;
    for (const Program& program : PROGRAMS) {
        for (const Task& task : tasks) {
            const Files files{task.source, task.stylesheet, folder + "/by-" + program.name};
            works.push_back({program.name + (" " + std::string(task.name)),
                             [files, program] { return program.files(files); }});
        }
        const Files files{"", folder + "/rows.xsl", ""};
        works.push_back({program.name + std::string(" compile"),
                         [files, program] { return program.compile(files); }});
    }
    for (const char* const title : {"50-000--amp--in-one-text", "100-000--amp--in-one-text",
                                    "entity-expansion--4-levels", "entity-expansion--5-levels"}) {
        const std::string file = folder + "/hostile-" + title + ".xml";
        works.push_back(
            {std::string("parse ") + title, [file] { return vexaParse(file); }, FEW_CALLS});
    }
    const auto document = vexa::Document::parse(vexa::Input::file(folder + "/rows-medium.xml"));
    const auto stylesheet = vexa::Stylesheet::compile(vexa::Input::file(folder + "/rows.xsl"));
    const auto shared = [document, stylesheet] { return vexaShared(document, stylesheet); };
    works.push_back({"vexa one thread", shared, Work::KEEPS_NOTHING, 1});
    works.push_back({"vexa two threads", shared, Work::KEEPS_NOTHING, 2});
    return works;
}
