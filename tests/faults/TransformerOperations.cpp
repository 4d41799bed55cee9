/**
 * @file
 * Initialization, termination, and the operations of the transformer.
 */
#include "SweepFiles.h"
#include "Trial.h"

#include "support/TestFunctions.h"

#include <vexa/Dom2Dom.h>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

#include <optional>

namespace {

bool isWholeResult(std::string_view text) {
    return beginsWith(text, RESULT_TEXT) && text.find("</b>") != std::string_view::npos;
}

bool transforms(VEXAXslTransformer& transformer, const std::string& sheet = sweepFiles().sheet) {
    ArrayInput source(SOURCE_TEXT);
    ArrayOutput output;
    return transformer.doTransform(source, sheet.c_str(), output) == 0 &&
           output.text().find("</b>") != std::string_view::npos;
}

class Start : public Trial {
public:
    ~Start() override { stop(); }
    void operate() override {
        TQXslTransformer_Initialize(nullptr);
        m_started = true;
    }
    bool succeeded() override {
        VEXAXslTransformer transformer;
        return transforms(transformer);
    }
    bool stillWorks() override {
        stop();
        operate();
        return succeeded();
    }

private:
    void stop() {
        if (m_started) {
            TQXslTransformer_Terminate(nullptr);
            m_started = false;
        }
    }
    bool m_started = false;
};

class Stop : public Trial {
public:
    Stop() { TQXslTransformer_Initialize(nullptr); }
    void operate() override { TQXslTransformer_Terminate(nullptr); }
    bool succeeded() override { return true; }
    bool stillWorks() override {
        TQXslTransformer_Initialize(nullptr);
        bool serves = false;
        {
            VEXAXslTransformer transformer;
            serves = transforms(transformer);
        }
        TQXslTransformer_Terminate(nullptr);
        return serves;
    }
};

class Construction : public Trial {
public:
    void operate() override { m_transformer.emplace(); }
    bool succeeded() override { return transforms(*m_transformer); }

private:
    std::optional<VEXAXslTransformer> m_transformer;
};

class Destruction : public Trial {
public:
    Destruction() {
        m_transformer.emplace();
        transforms(*m_transformer);
    }
    void operate() override { m_transformer.reset(); }
    bool succeeded() override { return true; }

private:
    std::optional<VEXAXslTransformer> m_transformer;
};

class TransformerTrial : public Trial {
public:
    TransformerTrial() { m_transformer.setStylesheetParam("p", "v"); }

protected:
    VEXAXslTransformer m_transformer;
};

class Installation : public TransformerTrial {
public:
    void operate() override { m_transformer.installExternalFunction(m_name, m_function); }
    bool succeeded() override { return transforms(m_transformer, m_sheet); }
    bool stillWorks() override {
        if (!transforms(m_transformer)) {
            return false; // an incomplete function would break every transform
        }
        operate();
        return succeeded();
    }

private:
    const I18NString m_name{"AFunctionWithANameThatIsLong"};
    const BracketFunction m_function;
    const std::string m_sheet = sweepFiles().write(
        "installed.xsl",
        stylesheetWithRootTemplate(
            "<b><xsl:value-of select=\"vexa:AFunctionWithANameThatIsLong('x')\"/></b>"));
};

class Parameter : public TransformerTrial {
public:
    void operate() override { m_transformer.setStylesheetParam(m_name, m_value); }
    bool succeeded() override { return shown() == TEXT; }
    bool stillWorks() override {
        const std::string now = shown();
        if (now != TEXT && now != "default") {
            return false; // an incomplete parameter
        }
        operate();
        return succeeded();
    }

private:
    static constexpr const char* TEXT = "a value that does not fit into a string by itself";

    std::string shown() {
        ArrayInput source(SOURCE_TEXT);
        m_output.reset();
        m_transformer.doTransform(source, m_sheet.c_str(), m_output);
        const std::string_view text = m_output.text();
        return std::string(text.substr(0, text.find('\0')));
    }

    const I18NString m_name{"another-parameter-with-a-long-name"};
    const I18NString m_value{TEXT};
    const std::string m_sheet = sweepFiles().write(
        "parameter.xsl",
        stylesheet("<xsl:output method='text'/>"
                   "<xsl:param name='another-parameter-with-a-long-name' select=\"'default'\"/>"
                   "<xsl:template match='/'><xsl:value-of "
                   "select='$another-parameter-with-a-long-name'/></xsl:template>"));
    ArrayOutput m_output;
};

class Dom2DomCreation : public TransformerTrial {
public:
    void operate() override { m_dom = m_transformer.createDom2Dom(); }
    bool succeeded() override { return m_dom->InitializeInputSource("<a/>"); }

private:
    std::unique_ptr<Dom2Dom> m_dom;
};

/** Runs the stylesheet on the source, with one kind of transform. */
class TransformTrial : public TransformerTrial {
public:
    bool succeeded() override { return m_result == 0 && isWholeResult(m_output.text()); }

protected:
    int m_result = 0;
    ArrayOutput m_output;
    const I18NString m_sheet{sweepFiles().sheet.c_str()};
};

class FileTransform : public TransformTrial {
public:
    void operate() override { m_result = m_transformer.doTransform(m_source, m_sheet, m_file); }
    bool succeeded() override {
        return m_result == 0 && isWholeResult(readFile(sweepFiles().output));
    }

private:
    const I18NString m_source{sweepFiles().source.c_str()};
    const I18NString m_file{sweepFiles().output.c_str()};
};

class StreamTransform : public TransformTrial {
public:
    void operate() override {
        m_source.rewind();
        m_output.reset();
        m_result = m_transformer.doTransform(m_source, m_sheet, m_output);
    }

private:
    ArrayInput m_source{SOURCE_TEXT};
};

/** Fails as a malformed source makes it fail; the report is the engine's. */
class FailingFileTransform : public TransformerTrial {
public:
    void operate() override { m_result = m_transformer.doTransform(m_source, m_sheet, m_file); }
    bool succeeded() override {
        return m_result == -2 && beginsWith(m_transformer.getLastError(), "SAXParseException: ");
    }
    bool stillWorks() override {
        operate();
        return succeeded() && transforms(m_transformer);
    }

private:
    int m_result = 0;
    const I18NString m_source{sweepFiles().malformedFile.c_str()};
    const I18NString m_sheet{sweepFiles().sheet.c_str()};
    const I18NString m_file{sweepFiles().output.c_str()};
};

class InMemoryTrial : public TransformTrial {
public:
    InMemoryTrial() { m_in->InitializeInputSource(SOURCE_TEXT); }

    bool reportedItsFailure() override {
        return m_result == -5 &&
               m_transformer.getLastError() == std::string_view("\nUnhandled Exception\n\n");
    }
    bool reportsEverything() const override { return true; }

protected:
    std::unique_ptr<Dom2Dom> m_in = m_transformer.createDom2Dom();
    std::unique_ptr<Dom2Dom> m_out = m_transformer.createDom2Dom();
};

class TransformIntoAStream : public InMemoryTrial {
public:
    TransformIntoAStream() { m_out->InitializeOutputTarget(m_output); }
    void operate() override {
        m_output.reset();
        m_result = m_transformer.doTransform(*m_in, m_sheet, *m_out);
    }
};

class TransformIntoADocument : public InMemoryTrial {
public:
    TransformIntoADocument() { m_out->InitializeOutputTarget(); }
    void operate() override { m_result = m_transformer.doTransform(*m_in, m_sheet, *m_out); }
    bool succeeded() override {
        m_output.reset();
        return m_result == 0 && m_out->Serialize(m_output) == 0 &&
               m_output.text().find("<c>1</c><c>2</c>") != std::string_view::npos;
    }
    bool stillWorks() override {
        // After a failed transform, its output document is no longer usable.
        m_out = m_transformer.createDom2Dom();
        m_out->InitializeOutputTarget();
        operate();
        return succeeded();
    }
};

/** Fails, and reports it: `beginning` is that of the report. */
class FailingInMemoryTransform : public InMemoryTrial {
public:
    void operate() override {
        m_output.reset();
        m_result = m_transformer.doTransform(*m_in, m_failingSheet, *m_out);
    }
    bool succeeded() override {
        return m_result == m_expected && beginsWith(m_transformer.getLastError(), m_beginning) &&
               m_transformer.getLastError()[std::strlen(m_transformer.getLastError()) - 1] == '\n';
    }
    bool stillWorks() override {
        operate();
        if (!succeeded()) {
            return false;
        }
        m_output.reset();
        return m_transformer.doTransform(*m_in, m_sheet, *m_out) == 0 &&
               isWholeResult(m_output.text());
    }

    /** An exception out of the composing of a report leaves the operation. */
    bool reportsEverything() const override { return false; }

protected:
    FailingInMemoryTransform(const std::string& sheet, int expected, const char* beginning)
        : m_failingSheet(sheet.c_str()), m_expected(expected), m_beginning(beginning) {
        m_out->InitializeOutputTarget(m_output);
    }

private:
    const I18NString m_failingSheet;
    const int m_expected;
    const char* const m_beginning;
};

struct MessageThatTerminates : FailingInMemoryTransform {
    MessageThatTerminates()
        : FailingInMemoryTransform(sweepFiles().messageSheet, -1, "\nXSLException Type is: ") {}
};

struct MalformedSheet : FailingInMemoryTransform {
    MalformedSheet()
        : FailingInMemoryTransform(sweepFiles().malformedFile, -2, "SAXParseException: ") {}
};

class Query : public InMemoryTrial {
public:
    void operate() override {
        m_output.reset();
        m_result = m_transformer.doXPath(*m_in, m_expression, m_output);
    }
    bool succeeded() override { return m_result == 0 && m_output.text() == m_expected; }
    bool reportedItsFailure() override {
        return m_result == -5 &&
               m_transformer.getLastError() == std::string_view("\nUnhandled Exception\n");
    }

protected:
    Query(const char* expression, const char* expected)
        : m_expression(expression), m_expected(expected) {}

private:
    const I18NString m_expression;
    const char* const m_expected;
};

struct StringQuery : Query {
    StringQuery() : Query("string(/a/i[. = 1])", "1") {}
};

struct NodeQuery : Query {
    NodeQuery() : Query("/a/i[2]", "<i>1</i>") {}
};

class WrongQuery : public Query {
public:
    WrongQuery() : Query("/a/i[", "") {}
    bool reportsEverything() const override { return false; }
    bool succeeded() override {
        m_length = std::strlen(m_transformer.getLastError());
        return m_result == -1 && beginsWith(m_transformer.getLastError(), "\nXSLException ") &&
               m_transformer.getLastError()[m_length - 1] == '\n';
    }

private:
    std::size_t m_length = 0;
};

class LastError : public InMemoryTrial {
public:
    void operate() override {
        // A failure that is reported without the engine.
        m_result = m_transformer.doXPath(*m_out, m_expression, m_output);
        m_text = m_transformer.getLastError();
    }
    bool succeeded() override {
        return m_result == -1 && beginsWith(m_text, "\nXSLException Type is: ");
    }
    bool reportsEverything() const override { return false; }
    bool reportedItsFailure() override {
        return m_result == -5 && beginsWith(m_text, "\nUnhandled Exception\n");
    }

private:
    const I18NString m_expression{"/a"};
    const char* m_text = "";
};

} // namespace

std::vector<Operation> transformerOperations() {
    return {
        {"TQXslTransformer_Initialize", Engine::StartedByTheTrial, prepared<Start>},
        {"TQXslTransformer_Terminate", Engine::StartedByTheTrial, prepared<Stop>},
        {"VEXAXslTransformer()", Engine::Started, prepared<Construction>},
        {"~VEXAXslTransformer()", Engine::Started, prepared<Destruction>},
        {"installExternalFunction", Engine::Started, prepared<Installation>},
        {"setStylesheetParam", Engine::Started, prepared<Parameter>},
        {"createDom2Dom", Engine::Started, prepared<Dom2DomCreation>},
        {"getLastError", Engine::Started, prepared<LastError>},
        {"doTransform of files", Engine::Started, prepared<FileTransform>},
        {"doTransform of files, malformed source", Engine::Started, prepared<FailingFileTransform>},
        {"doTransform of streams", Engine::Started, prepared<StreamTransform>},
        {"doTransform in memory, into a stream", Engine::Started, prepared<TransformIntoAStream>},
        {"doTransform in memory, into a document", Engine::Started,
         prepared<TransformIntoADocument>},
        {"doTransform in memory, ended by a message", Engine::Started,
         prepared<MessageThatTerminates>},
        {"doTransform in memory, malformed stylesheet", Engine::Started, prepared<MalformedSheet>},
        {"doXPath, a string", Engine::Started, prepared<StringQuery>},
        {"doXPath, a node", Engine::Started, prepared<NodeQuery>},
        {"doXPath, a wrong expression", Engine::Started, prepared<WrongQuery>},
    };
}
