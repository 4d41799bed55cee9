/**
 * @file
 * The operations of transformers and holders in any order that keeps their lifetimes.
 */
#include "support/BoundedOutput.h"
#include "support/Check.h"
#include "support/Library.h"
#include "support/ScratchFile.h"
#include "support/Workbench.h"

#include <vexa/TQXslTransformer.h>
#include <vexa/TqXsltFunction.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>
#include <xercesc/sax/SAXException.hpp>

namespace {

constexpr const char* SOURCES[] = {
    "<a/>",
    "<a x='1'><b>t</b><b>u</b></a>",
    "<n:a xmlns:n='urn:n'><!--c--><?p i?><n:b>\xF0\x9F\x98\x80</n:b></n:a>",
    "<!DOCTYPE a [<!ENTITY e 'text'><!ATTLIST a d CDATA 'v'>]><a>&e;<![CDATA[<]]></a>",
    "<a><b></a>",
    "",
    "text",
    "<?xml version='1.0' encoding='no-such'?><a/>"};

constexpr const char* TEMPLATES[] = {
    "<out><xsl:copy-of select='/'/></out>",
    "<xsl:copy-of select='node()'/>",
    "text only",
    "",
    "<a/><b/>",
    "<!--c--><xsl:comment>c</xsl:comment><xsl:processing-instruction name='p'/><a/>",
    "<a><xsl:message terminate='yes'>end</xsl:message></a>",
    "<a><xsl:message>go on</xsl:message></a>",
    "<a><xsl:value-of select='v:f(1)'/></a>",
    "<a><xsl:value-of select='v:GetDateTime()'/><xsl:value-of select='v:TimerStop(1)'/></a>",
    "<a p='{$p}'><xsl:for-each select='//*'><xsl:sort/><xsl:number/></xsl:for-each></a>",
    "<a><xsl:value-of select=\"format-number(1234.5, '#,##0.00')\"/></a>",
    "<xsl:apply-templates select=\"document('')//*\" mode='m'/>",
    "<a><xsl:call-template name='none'/></a>",
    "<a><xsl:value-of select='$none'/></a>",
    "<a>"};

constexpr const char* EXPRESSIONS[] = {
    "/",   "//*", "string(//b[1])", "count(//*)", "1 = 1",   "//@x",     "$p",
    "n:b", "",    "id('a')",        "//none",     "string(", "/a | //b", "v:f(1)"};

std::string sheetWith(const std::string& content) {
    return "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
           "xmlns:v='http://vexa.example/xslt/wol'><xsl:param name='p'/>"
           "<xsl:template match='/'>" +
           content + "</xsl:template></xsl:stylesheet>";
}

/** Ends in one of the ways in which a function can end. */
class AnyEnd : public TqXsltFunction {
public:
    explicit AnyEnd(int end) : m_end(end) {}

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode* node,
                               const XObjectArgVectorType&,
                               const xalanc::Locator* locator) const override {
        switch (m_end) {
        case 0:
            throw std::runtime_error("a host's own");
        case 1:
            throw xercesc::SAXException("a parser's");
        case 2:
            throw 3;
        case 3:
            context.problem(context.eXPATH, context.eError, getError(), locator, node);
            break;
        default:
            break;
        }
        return context.getXObjectFactory().createString(xalanc::XalanDOMString("done"));
    }
    AnyEnd* clone() const override { return new AnyEnd(*this); }
    xalanc::XalanDOMString getError() const override { return xalanc::XalanDOMString("f()"); }

private:
    int m_end;
};

/** A transformer, and the holders and streams that must not outlive it. */
struct Bench {
    VEXAXslTransformer transformer;
    std::vector<std::unique_ptr<BoundedOutput>> streams;
    std::vector<std::unique_ptr<Dom2Dom>> holders;
};

class Session {
public:
    explicit Session(FuzzedDataProvider& input) : m_input(input) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() {
        m_benches.clear();
        for (; m_starts > 0; --m_starts) {
            TQXslTransformer_Terminate("ignored");
        }
    }

    void step() {
        static constexpr void (Session::*STEPS[])() = {&Session::start,
                                                       &Session::stop,
                                                       &Session::makeTransformer,
                                                       &Session::makeHolder,
                                                       &Session::makeHolder,
                                                       &Session::dropTransformer,
                                                       &Session::dropHolder,
                                                       &Session::initializeInput,
                                                       &Session::initializeInput,
                                                       &Session::initializeOutput,
                                                       &Session::initializeOutput,
                                                       &Session::transform,
                                                       &Session::transform,
                                                       &Session::transform,
                                                       &Session::queryHolder,
                                                       &Session::queryHolder,
                                                       &Session::serializeHolder,
                                                       &Session::transformTexts,
                                                       &Session::transformFiles,
                                                       &Session::setParameter,
                                                       &Session::install,
                                                       &Session::chooseTree,
                                                       &Session::lookAtErrors};
        (this->*STEPS[m_input.ConsumeIntegralInRange<std::size_t>(0, std::size(STEPS) - 1)])();
    }

private:
    void start() {
        if (m_starts < 3) {
            TQXslTransformer_Initialize(nullptr);
            ++m_starts;
        }
    }

    /** The last stop not under the feet of a transformer. */
    void stop() {
        if (m_starts > 1 || (m_starts == 1 && m_benches.empty())) {
            TQXslTransformer_Terminate(nullptr);
            --m_starts;
        }
    }

    void makeTransformer() {
        if (m_starts > 0 && m_benches.size() < 3) {
            m_benches.push_back(std::make_unique<Bench>());
        }
    }

    void makeHolder() {
        Bench* const bench = anyBench();
        if (bench && bench->holders.size() < 6) {
            bench->holders.push_back(m_input.ConsumeBool()
                                         ? bench->transformer.createDom2Dom()
                                         : std::make_unique<Dom2Dom>(&bench->transformer));
        }
    }

    void dropTransformer() { drop(m_benches); }

    void dropHolder() {
        if (Bench* const bench = anyBench()) {
            drop(bench->holders);
        }
    }

    void initializeInput() {
        Dom2Dom* const holder = anyHolder();
        if (!holder) {
            return;
        }
        const std::string text = anySource();
        switch (m_input.ConsumeIntegralInRange(0, 2)) {
        case 0:
            holder->InitializeInputSource(text.c_str());
            break;
        case 1:
            holder->InitializeInputSource(nullptr);
            break;
        default: {
            std::istringstream stream(text);
            holder->InitializeInputSource(stream, m_input.ConsumeBool() ? "name.xml" : nullptr);
        }
        }
    }

    void initializeOutput() {
        Bench* const bench = anyBench();
        Dom2Dom* const holder = bench ? anyHolder(*bench) : nullptr;
        if (!holder) {
            return;
        }
        if (m_input.ConsumeBool()) {
            holder->InitializeOutputTarget();
        } else {
            bench->streams.push_back(
                std::make_unique<BoundedOutput>(m_input.ConsumeBool() ? 256 * 1024 : 4));
            holder->InitializeOutputTarget(*bench->streams.back());
        }
    }

    /** The holders may be one, and may be another transformer's. */
    void transform() {
        Bench* const bench = anyBench();
        Dom2Dom* const in = anyHolder();
        Dom2Dom* const out = anyHolder();
        if (bench && in && out) {
            ::transformInMemory(bench->transformer, *in, anySheet(), *out);
        }
    }

    void queryHolder() {
        Bench* const bench = anyBench();
        Dom2Dom* const holder = anyHolder();
        if (bench && holder) {
            ::query(bench->transformer, *holder, m_input.PickValueInArray(EXPRESSIONS));
        }
    }

    void serializeHolder() {
        if (Dom2Dom* const holder = anyHolder()) {
            ::serialize(*holder);
        }
    }

    void transformTexts() {
        if (Bench* const bench = anyBench()) {
            transformStream(bench->transformer, anySource(), anySheet());
        }
    }

    void transformFiles() {
        Bench* const bench = anyBench();
        if (!bench) {
            return;
        }
        const std::string source = scratchFile("source.xml", anySource());
        const std::string result = scratchFile("result.xml", "");
        try {
            const int code = bench->transformer.doTransform(
                m_input.ConsumeBool() ? source.c_str() : "", anySheet().c_str(),
                m_input.ConsumeBool() ? result.c_str() : "");
            checkResult(code, bench->transformer.getLastError());
        } catch (const std::exception&) {
            // By contract this road lets a function's own exception pass.
        } catch (int) {
        }
    }

    void setParameter() {
        if (Bench* const bench = anyBench()) {
            bench->transformer.setStylesheetParam("p", m_input.ConsumeBool() ? "value" : "it's");
        }
    }

    void install() {
        if (Bench* const bench = anyBench()) {
            bench->transformer.installExternalFunction(
                m_input.ConsumeBool() ? "f" : "GetDateTime",
                AnyEnd(m_input.ConsumeIntegralInRange(0, 5)));
        }
    }

    void chooseTree() { VEXAXslTransformer::m_bUseXercesDOM = m_input.ConsumeBool(); }

    void lookAtErrors() {
        Bench* const bench = anyBench();
        Dom2Dom* const holder = anyHolder();
        require(!bench || bench->transformer.getLastError(), "an error text is never null");
        require(!holder || holder->getLastError(), "an error text is never null");
    }

    std::string anySource() { return m_input.PickValueInArray(SOURCES); }

    std::string anySheet() {
        static const std::vector<std::string> sheets = [] {
            std::vector<std::string> names = {"", "/no/such/sheet.xsl"};
            for (const char* const content : TEMPLATES) {
                names.push_back(scratchFile("sheet" + std::to_string(names.size()) + ".xsl",
                                            sheetWith(content)));
            }
            return names;
        }();
        return sheets[m_input.ConsumeIntegralInRange<std::size_t>(0, sheets.size() - 1)];
    }

    Bench* anyBench() { return any(m_benches); }
    Dom2Dom* anyHolder(Bench& bench) { return any(bench.holders); }
    Dom2Dom* anyHolder() {
        Bench* const bench = anyBench();
        return bench ? anyHolder(*bench) : nullptr;
    }

    template <typename Thing>
    Thing* any(const std::vector<std::unique_ptr<Thing>>& things) {
        return things.empty()
                   ? nullptr
                   : things[m_input.ConsumeIntegralInRange<std::size_t>(0, things.size() - 1)]
                         .get();
    }

    template <typename Thing>
    void drop(std::vector<std::unique_ptr<Thing>>& things) {
        if (!things.empty()) {
            const auto index = m_input.ConsumeIntegralInRange<std::size_t>(0, things.size() - 1);
            things.erase(things.begin() + static_cast<std::ptrdiff_t>(index));
        }
    }

    FuzzedDataProvider& m_input;
    int m_starts = 0;
    std::vector<std::unique_ptr<Bench>> m_benches;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    beginInput();
    // Each session does its own starts and stops.
    static const int stopped = TQXslTransformer_Terminate(nullptr);
    static_cast<void>(stopped);
    VEXAXslTransformer::m_bUseXercesDOM = false;
    Session session(input);
    for (int i = 0; i < 60 && input.remaining_bytes() > 0; ++i) {
        session.step();
    }
    return 0;
}
