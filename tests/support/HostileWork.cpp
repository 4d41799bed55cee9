#include "support/HostileWork.h"

#include <vexa/xslt.h>

using vexa::Document;
using vexa::Input;
using vexa::Options;
using vexa::Stylesheet;
using vexa::Transformation;
using vexa::XPath;

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

std::string manyItems() {
    return "<a>" + repeated("<i/>", 1000) + "</a>";
}

std::string endlessRecursion() {
    return "\n<xsl:template match='/' name='again'><xsl:call-template "
           "name='again'/></xsl:template>";
}

namespace {

/** Entities that stand for ten of the one before, and a reference to the last of them. */
std::string entityBomb(const std::string& before, const std::string& after) {
    std::string entities = "<!ENTITY e0 'lol'>";
    for (int i = 1; i <= 9; ++i) {
        entities += "<!ENTITY e" + std::to_string(i) + " '" +
                    repeated("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    return "<!DOCTYPE a [" + entities + "]>" + before + "&e9;" + after;
}

/** Loops over the items, one inside the other. */
std::string loops(const std::string& content) {
    std::string nested = content;
    for (int i = 0; i < 6; ++i) {
        nested = "<xsl:for-each select='//i'>" + nested + "</xsl:for-each>";
    }
    return nested;
}

/** A stylesheet with the given top-level content. */
std::string sheet(const std::string& content) {
    return "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>" +
           content + "</xsl:stylesheet>";
}

Stylesheet compiled(const std::string& content) {
    return Stylesheet::compile(Input::text(sheet(content)));
}

Stylesheet compiledRootTemplate(const std::string& content) {
    return compiled("<xsl:template match='/'>" + content + "</xsl:template>");
}

Document parsed(const std::string& text) {
    return Document::parse(Input::text(text));
}

void transform(const std::string& rootTemplate, const std::string& source, const Options& options) {
    Transformation(compiledRootTemplate(rootTemplate), options).toString(Input::text(source));
}

const std::vector<HostileWork> ENDLESS{
    {"EntitiesInText",
     [](const Options& options) {
         Document::parse(Input::text(entityBomb("<a>", "</a>")), options);
     }},
    {"EntitiesInAnAttribute",
     [](const Options& options) {
         Document::parse(Input::text(entityBomb("<a b='", "'/>")), options);
     }},
    {"EntitiesInAStylesheet",
     [](const Options& options) {
         Stylesheet::compile(Input::text(entityBomb("<a>", "</a>")), options);
     }},
    {"EntitiesInAnAttributeOfAStylesheet",
     [](const Options& options) {
         Stylesheet::compile(Input::text(entityBomb("<a b='", "'/>")), options);
     }},
    {"EntitiesInADocument",
     [](const Options& given) {
         Options options = given;
         options.resolver = [](const std::string&, const std::string&) {
             return Input::text(entityBomb("<a>", "</a>"));
         };
         transform("<xsl:copy-of select=\"document('mem:/d')\"/>", "<a/>", options);
     }},
    {"ACopyOfManyAttributes",
     [](const Options& options) {
         std::string attributes;
         for (int i = 0; i < 20'000; ++i) {
             attributes += " a" + std::to_string(i) + "=''";
         }
         transform("<xsl:copy-of select='.'/>", "<a" + attributes + "/>", options);
     }},
    {"LoopsWithAResult",
     [](const Options& options) { transform(loops("x"), manyItems(), options); }},
    {"LoopsWithoutAResult",
     [](const Options& options) { transform(loops(""), manyItems(), options); }},
    {"LoopsInAVariable",
     [](const Options& options) {
         transform("<xsl:variable name='v'>" + loops("<x/>") + "</xsl:variable>", manyItems(),
                   options);
     }},
    {"Sorts",
     [](const Options& options) {
         transform(
             loops("<xsl:for-each select='//i'><xsl:sort select='count(//i)'/></xsl:for-each>"),
             manyItems(), options);
     }},
    {"ADocumentAsResult",
     [](const Options& options) {
         Transformation(compiledRootTemplate("<r>" + loops("<x/>") + "</r>"), options)
             .toDocument(Input::text(manyItems()));
     }},
    {"PredicatesInPredicates",
     [](const Options& options) {
         XPath::compile("//i[//i[//i[//i[//i[. = 'x'] = 'x'] = 'x'] = 'x'] = 'x']")
             .evaluate(parsed(manyItems()), options);
     }},
    {"AxesAfterAxes",
     [](const Options& options) {
         XPath::compile("count(//i/preceding::*/following::*/preceding::*)")
             .evaluate(parsed(manyItems()), options);
     }},
};

/** Work that needs ever more memory. */
const std::vector<HostileWork> FILLING_MEMORY{
    {"Recursion",
     [](const Options& options) {
         Transformation(compiled(endlessRecursion()), options).toString(Input::text("<a/>"));
     }},
    {"ATreeInAVariable",
     [](const Options& options) {
         transform("<xsl:variable name='v'>" + loops("<x a='1'>text</x>") + "</xsl:variable>",
                   manyItems(), options);
     }},
    {"AString",
     [](const Options& options) {
         Transformation(
             compiled("<xsl:template match='/' name='d'><xsl:param name='s' select=\"'xxxxxxxx'\"/>"
                      "<xsl:call-template name='d'><xsl:with-param name='s' "
                      "select='concat($s, $s)'/></xsl:call-template></xsl:template>"),
             options)
             .toString(Input::text("<a/>"));
     }},
    {"TheResult",
     [](const Options& options) {
         transform(loops(std::string(10'000, 'x')), manyItems(), options);
     }},
    {"TheResultAsADocument",
     [](const Options& options) {
         Transformation(compiledRootTemplate("<r>" + loops("<x a='1'>text</x>") + "</r>"), options)
             .toDocument(Input::text(manyItems()));
     }},
    {"ADocument",
     [](const Options& options) {
         Document::parse(Input::text("<a>" + repeated("<i x='1'>text</i>", 20'000) + "</a>"),
                         options);
     }},
    {"ATextOfADocument",
     [](const Options& options) {
         Document::parse(Input::text("<a>" + repeated("text &amp; more", 100'000) + "</a>"),
                         options);
     }},
    {"AStylesheet",
     [](const Options& options) {
         Stylesheet::compile(
             Input::text(sheet(repeated("<xsl:template match='a/b[c=1]'/>", 5'000))), options);
     }},
    {"ANodeSet",
     [](const Options& options) {
         Document many = parsed("<a>" + repeated("<i/>", 100'000) + "</a>");
         XPath::compile("//i | //a").evaluate(many, options);
     }},
};

} // namespace

const std::vector<HostileWork>& endlessWork() {
    return ENDLESS;
}

const std::vector<HostileWork>& workThatFillsMemory() {
    return FILLING_MEMORY;
}
