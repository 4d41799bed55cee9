/**
 * @file
 * The operations of the document holder.
 */
#include "Trial.h"
#include "Workplace.h"

#include <vexa/Dom2Dom.h>
#include <vexa/VEXAXslTransformer.h>

namespace {

class HolderTrial : public Trial {
public:
    HolderTrial() { m_transformer.setStylesheetParam("p", "v"); }

protected:
    bool answers(const char* expression, std::string_view expected) {
        ArrayOutput answer;
        return m_transformer.doXPath(*m_holder, expression, answer) == 0 &&
               answer.text() == expected;
    }

    VEXAXslTransformer m_transformer;
    std::unique_ptr<Dom2Dom> m_holder = m_transformer.createDom2Dom();
};

/** A holder takes its role once. */
class RoleTrial : public HolderTrial {
public:
    bool servesOn() override {
        if (!m_taken) {
            operate();
        }
        return succeeded();
    }

protected:
    bool m_taken = false;
};

class ParseOfAText : public RoleTrial {
public:
    void operate() override { m_taken = m_holder->InitializeInputSource(SOURCE_TEXT); }
    bool succeeded() override { return m_taken && answers("string(/a)", "21"); }
};

class ParseOfAStream : public RoleTrial {
public:
    void operate() override {
        m_source.rewind();
        m_taken = m_holder->InitializeInputSource(m_source, "a-system-id.xml");
    }
    bool succeeded() override { return m_taken && answers("string(/a)", "21"); }

private:
    ArrayInput m_source{SOURCE_TEXT};
};

class OutputTrial : public RoleTrial {
public:
    /** A holder with the role, but without all that it needs, is spent; the next one serves. */
    bool servesOn() override {
        if (!m_taken) {
            if (m_holder->GetDocument()) {
                return false;
            }
            m_holder = m_transformer.createDom2Dom();
        }
        return RoleTrial::servesOn();
    }

protected:
    bool receives() {
        const auto in = m_transformer.createDom2Dom();
        return in->InitializeInputSource(SOURCE_TEXT) &&
               m_transformer.doTransform(*in, workplace().sheet.c_str(), *m_holder) == 0;
    }
};

class DocumentOutput : public OutputTrial {
public:
    void operate() override { m_taken = m_holder->InitializeOutputTarget(); }
    bool succeeded() override {
        m_received = m_received || (m_taken && receives());
        return m_received && answers("string(/b/c)", "1");
    }

private:
    bool m_received = false;
};

class StreamOutput : public OutputTrial {
public:
    void operate() override { m_taken = m_holder->InitializeOutputTarget(m_output); }
    bool succeeded() override {
        m_output.reset();
        return m_taken && receives() && beginsWith(m_output.text(), RESULT_TEXT);
    }

private:
    ArrayOutput m_output;
};

class Serialisation : public HolderTrial {
public:
    Serialisation() {
        const auto in = m_transformer.createDom2Dom();
        in->InitializeInputSource(SOURCE_TEXT);
        m_holder->InitializeOutputTarget();
        m_transformer.doTransform(*in, workplace().sheet.c_str(), *m_holder);
    }
    void operate() override {
        m_output.reset();
        m_result = m_holder->Serialize(m_output);
    }
    bool succeeded() override {
        return m_result == 0 && beginsWith(m_output.text(), "<?xml ") &&
               m_output.text().find("</b>\n") == m_output.text().size() - 6;
    }

private:
    int m_result = 0;
    ArrayOutput m_output;
};

class Document : public HolderTrial {
public:
    Document() { m_holder->InitializeInputSource(SOURCE_TEXT); }
    void operate() override { m_document = m_holder->GetDocument(); }
    bool succeeded() override { return m_document && answers("string(/a)", "21"); }

private:
    const void* m_document = nullptr;
};

class LastErrorOfAParse : public HolderTrial {
public:
    LastErrorOfAParse() { m_holder->InitializeInputSource("<a>"); }
    void operate() override { m_text = m_holder->getLastError(); }
    bool succeeded() override { return beginsWith(m_text, "SAXParseException: "); }

private:
    const char* m_text = "";
};

} // namespace

std::vector<Operation> holderOperations() {
    return {
        {"Dom2Dom::InitializeInputSource of a text", Engine::Started, prepared<ParseOfAText>},
        {"Dom2Dom::InitializeInputSource of a stream", Engine::Started, prepared<ParseOfAStream>},
        {"Dom2Dom::InitializeOutputTarget as a document", Engine::Started,
         prepared<DocumentOutput>},
        {"Dom2Dom::InitializeOutputTarget as a stream", Engine::Started, prepared<StreamOutput>},
        {"Dom2Dom::Serialize", Engine::Started, prepared<Serialisation>},
        {"Dom2Dom::GetDocument", Engine::Started, prepared<Document>},
        {"Dom2Dom::getLastError", Engine::Started, prepared<LastErrorOfAParse>},
    };
}
