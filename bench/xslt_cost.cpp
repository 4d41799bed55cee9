// The second interface compared with the engine and with libxslt, each used in its best way: a
// compiled stylesheet, and sources that are freed. A call parses a file, transforms it and writes a
// file.
#include "support/Work.h"

#include <vexa/xslt.h>

#include <fstream>
#include <memory>

#include <libexslt/exslt.h>
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

// ---- The functions of EXSLT ----

struct Function {
    const char* name; // with the namespace's prefix
    const char* arguments;
};

/** Those of libexslt that give the same each time. */
constexpr Function EXSLT_FUNCTIONS[] = {
    {"exsl:node-set", "$nodes"},
    {"exsl:object-type", "$nodes"},
    {"str:tokenize", "'a b c'"},
    {"str:split", "'a, b, c', ', '"},
    {"str:replace", "'a b c', 'b', 'd'"},
    {"str:padding", "20, '-='"},
    {"str:align", "'a', '----------', 'center'"},
    {"str:concat", "$nodes"},
    {"str:encode-uri", "'a b/c', true()"},
    {"str:decode-uri", "'a%20b%2Fc'"},
    {"date:date", "'2001-06-03T11:40:23Z'"},
    {"date:time", "'2001-06-03T11:40:23Z'"},
    {"date:year", "'2001-06-03T11:40:23Z'"},
    {"date:leap-year", "'2001-06-03T11:40:23Z'"},
    {"date:month-in-year", "'2001-06-03T11:40:23Z'"},
    {"date:month-name", "'2001-06-03T11:40:23Z'"},
    {"date:month-abbreviation", "'2001-06-03T11:40:23Z'"},
    {"date:week-in-year", "'2001-06-03T11:40:23Z'"},
    {"date:week-in-month", "'2001-06-03T11:40:23Z'"},
    {"date:day-in-year", "'2001-06-03T11:40:23Z'"},
    {"date:day-in-month", "'2001-06-03T11:40:23Z'"},
    {"date:day-of-week-in-month", "'2001-06-03T11:40:23Z'"},
    {"date:day-in-week", "'2001-06-03T11:40:23Z'"},
    {"date:day-name", "'2001-06-03T11:40:23Z'"},
    {"date:day-abbreviation", "'2001-06-03T11:40:23Z'"},
    {"date:hour-in-day", "'2001-06-03T11:40:23Z'"},
    {"date:minute-in-hour", "'2001-06-03T11:40:23Z'"},
    {"date:second-in-minute", "'2001-06-03T11:40:23Z'"},
    {"date:seconds", "'2001-06-03T11:40:23Z'"},
    {"date:add", "'2001-06-03T11:40:23Z', 'P1M2DT3H'"},
    {"date:add-duration", "'P1Y2M', 'P3Y'"},
    {"date:difference", "'2001-06-03', '2001-07-03'"},
    {"date:duration", "100000"},
    {"math:min", "$nodes"},
    {"math:max", "$nodes"},
    {"math:highest", "$nodes"},
    {"math:lowest", "$nodes"},
    {"math:abs", "-1.5"},
    {"math:sqrt", "2"},
    {"math:power", "2, 0.5"},
    {"math:constant", "'PI', 10"},
    {"math:log", "2"},
    {"math:exp", "2"},
    {"math:sin", "2"},
    {"math:atan2", "1, 2"},
    {"set:difference", "$nodes, $some"},
    {"set:intersection", "$nodes, $some"},
    {"set:distinct", "$nodes"},
    {"set:has-same-node", "$nodes, $some"},
    {"set:leading", "$nodes, $some"},
    {"set:trailing", "$nodes, $some"},
    {"dyn:evaluate", "'1 + 1'"},
    {"dyn:map", "$some, '1 + 1'"},
};

/** A stylesheet that evaluates an expression for each of the source's rows. */
Files exsltFiles(const std::string& folder, const std::string& name,
                 const std::string& expression) {
    Files files{folder + "/rows-calls.xml", folder + "/exslt-" + name + ".xsl",
                folder + "/by-exslt"};
    std::ofstream(files.stylesheet)
        << "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
           "xmlns:exsl='http://exslt.org/common' xmlns:str='http://exslt.org/strings' "
           "xmlns:date='http://exslt.org/dates-and-times' xmlns:math='http://exslt.org/math' "
           "xmlns:set='http://exslt.org/sets' xmlns:dyn='http://exslt.org/dynamic'>"
           "<xsl:output method='text'/>"
           "<xsl:variable name='nodes' select='/rows/row[position() &lt; 11]'/>"
           "<xsl:variable name='some' select='/rows/row[position() = 3]'/>"
           "<xsl:template match='/'><xsl:for-each select='/rows/row'><xsl:value-of select=\""
        << expression << "\"/></xsl:for-each></xsl:template></xsl:stylesheet>";
    return files;
}

void addExslt(Works& works, const std::string& folder) {
    const auto add = [&](const std::string& name, const std::string& expression) {
        const Files files = exsltFiles(folder, name, expression);
        works.push_back({"vexa exslt " + name, [files] { return vexaFiles(files); }});
        works.push_back({"libxslt exslt " + name, [files] { return libxsltFiles(files); }});
    };
    exsltRegisterAll();
    add("nothing", "'x'");
    for (const auto& [name, arguments] : EXSLT_FUNCTIONS) {
        add(name, std::string(name) + "(" + arguments + ")");
    }
}

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
    addExslt(works, folder);
    const auto document = vexa::Document::parse(vexa::Input::file(folder + "/rows-medium.xml"));
    const auto stylesheet = vexa::Stylesheet::compile(vexa::Input::file(folder + "/rows.xsl"));
    const auto shared = [document, stylesheet] { return vexaShared(document, stylesheet); };
    works.push_back({"vexa one thread", shared, Work::KEEPS_NOTHING, 1});
    works.push_back({"vexa two threads", shared, Work::KEEPS_NOTHING, 2});
    return works;
}
