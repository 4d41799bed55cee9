/**
 * @file
 * The operations of the in-memory document.
 */
#include "SweepFiles.h"
#include "Trial.h"

#include <vexa/Dom2Dom.h>
#include <vexa/VEXAXslTransformer.h>

namespace {

class Dom2DomTrial : public Trial {
public:
    Dom2DomTrial() { m_transformer.setStylesheetParam("p", "v"); }

protected:
    bool answers(const char* expression, std::string_view expected) {
        ArrayOutput answer;
        return m_transformer.doXPath(*m_dom, expression, answer) == 0 && answer.text() == expected;
    }

    VEXAXslTransformer m_transformer;
    std::unique_ptr<Dom2Dom> m_dom = m_transformer.createDom2Dom();
};

/** An in-memory document is initialized once. */
class InitializationTrial : public Dom2DomTrial {
public:
    bool stillWorks() override {
        if (!m_isInitialized) {
            operate();
        }
        return succeeded();
    }

protected:
    bool m_isInitialized = false;
};

class ParseOfAText : public InitializationTrial {
public:
    void operate() override { m_isInitialized = m_dom->InitializeInputSource(SOURCE_TEXT); }
    bool succeeded() override { return m_isInitialized && answers("string(/a)", "21"); }
};

class ParseOfAStream : public InitializationTrial {
public:
    void operate() override {
        m_source.rewind();
        m_isInitialized = m_dom->InitializeInputSource(m_source, "a-system-id.xml");
    }
    bool succeeded() override { return m_isInitialized && answers("string(/a)", "21"); }

private:
    ArrayInput m_source{SOURCE_TEXT};
};

class OutputTrial : public InitializationTrial {
public:
    /** After a failed initialization, the document is no longer usable, but a new one is. */
    bool stillWorks() override {
        if (!m_isInitialized) {
            if (m_dom->GetDocument()) {
                return false;
            }
            m_dom = m_transformer.createDom2Dom();
        }
        return InitializationTrial::stillWorks();
    }

protected:
    bool receives() {
        const auto in = m_transformer.createDom2Dom();
        return in->InitializeInputSource(SOURCE_TEXT) &&
               m_transformer.doTransform(*in, sweepFiles().sheet.c_str(), *m_dom) == 0;
    }
};

class DocumentOutput : public OutputTrial {
public:
    void operate() override { m_isInitialized = m_dom->InitializeOutputTarget(); }
    bool succeeded() override {
        m_received = m_received || (m_isInitialized && receives());
        return m_received && answers("string(/b/c)", "1");
    }

private:
    bool m_received = false;
};

class StreamOutput : public OutputTrial {
public:
    void operate() override { m_isInitialized = m_dom->InitializeOutputTarget(m_output); }
    bool succeeded() override {
        m_output.reset();
        return m_isInitialized && receives() && beginsWith(m_output.text(), RESULT_TEXT);
    }

private:
    ArrayOutput m_output;
};

class Serialization : public Dom2DomTrial {
public:
    Serialization() {
        const auto in = m_transformer.createDom2Dom();
        in->InitializeInputSource(SOURCE_TEXT);
        m_dom->InitializeOutputTarget();
        m_transformer.doTransform(*in, sweepFiles().sheet.c_str(), *m_dom);
    }
    void operate() override {
        m_output.reset();
        m_result = m_dom->Serialize(m_output);
    }
    bool succeeded() override {
        return m_result == 0 && beginsWith(m_output.text(), "<?xml ") &&
               m_output.text().find("</b>\n") == m_output.text().size() - 6;
    }

private:
    int m_result = 0;
    ArrayOutput m_output;
};

class Document : public Dom2DomTrial {
public:
    Document() { m_dom->InitializeInputSource(SOURCE_TEXT); }
    void operate() override { m_document = m_dom->GetDocument(); }
    bool succeeded() override { return m_document && answers("string(/a)", "21"); }

private:
    const void* m_document = nullptr;
};

class LastErrorOfAParse : public Dom2DomTrial {
public:
    LastErrorOfAParse() { m_dom->InitializeInputSource("<a>"); }
    void operate() override { m_text = m_dom->getLastError(); }
    bool succeeded() override { return beginsWith(m_text, "SAXParseException: "); }

private:
    const char* m_text = "";
};

} // namespace

std::vector<Operation> dom2DomOperations() {
    return {
        {"Dom2Dom::InitializeInputSource of a text", Engine::Started, prepared<ParseOfAText>},
        {"Dom2Dom::InitializeInputSource of a stream", Engine::Started, prepared<ParseOfAStream>},
        {"Dom2Dom::InitializeOutputTarget as a document", Engine::Started,
         prepared<DocumentOutput>},
        {"Dom2Dom::InitializeOutputTarget as a stream", Engine::Started, prepared<StreamOutput>},
        {"Dom2Dom::Serialize", Engine::Started, prepared<Serialization>},
        {"Dom2Dom::GetDocument", Engine::Started, prepared<Document>},
        {"Dom2Dom::getLastError", Engine::Started, prepared<LastErrorOfAParse>},
    };
}
