/**
 * @file
 * The base class of extension functions, and the built-in functions, called by stylesheets.
 */
#include "FailingAllocations.h"
#include "SweepFiles.h"
#include "Trial.h"

#include "support/TestFunctions.h"

#include <vexa/VEXAXslTransformer.h>

namespace {

constexpr const char* LONG_TEXT = "A text that is too long to be kept without an allocation";

class ToEngineString : public Trial {
public:
    void operate() override {
        m_same = TqXsltFunction::I18NStringToXalanDOMString(m_text) == m_expected;
    }
    bool succeeded() override { return m_same; }

private:
    const I18NString m_text{LONG_TEXT};
    const xalanc::XalanDOMString m_expected{LONG_TEXT};
    bool m_same = false;
};

class FromEngineString : public Trial {
public:
    void operate() override {
        m_same = TqXsltFunction::XalanDOMStringToI18NString(m_text) == m_expected;
    }
    bool succeeded() override { return m_same; }

private:
    const xalanc::XalanDOMString m_text{LONG_TEXT};
    const I18NString m_expected{LONG_TEXT};
    bool m_same = false;
};

class CloneForTheEngine : public Trial {
public:
    ~CloneForTheEngine() override { release(); }
    void operate() override {
        release();
        m_clone = static_cast<const TqXsltFunction&>(m_function).clone(m_memory);
    }
    bool succeeded() override { return m_clone != nullptr; }

private:
    void release() {
        if (m_clone) {
            m_clone->~Function();
            m_memory.deallocate(m_clone);
            m_clone = nullptr;
        }
    }

    const ConstantFunction m_function{LONG_TEXT};
    xercesc::MemoryManager& m_memory = xalanc::XalanMemMgrs::getDefaultXercesMemMgr();
    xalanc::Function* m_clone = nullptr;
};

/** Starts or ends the counting of allocations when it is called. */
class Switch : public TqXsltFunction {
public:
    explicit Switch(bool count) : m_bCount(count) {}

    xalanc::XObjectPtr execute(xalanc::XPathExecutionContext& context, xalanc::XalanNode*,
                               const XObjectArgVectorType&, const xalanc::Locator*) const override {
        allocations::suspend();
        const auto nothing = context.getXObjectFactory().createString(xalanc::XalanDOMString());
        if (m_bCount) {
            allocations::resume();
        }
        return nothing;
    }
    Switch* clone() const override { return new Switch(*this); }
    xalanc::XalanDOMString getError() const override { return xalanc::XalanDOMString(); }

private:
    bool m_bCount;
};

/** Calls one function from a stylesheet; only allocations in that call fail. */
class CallTrial : public Trial {
public:
    void operate() override {
        allocations::suspend(); // up to the call
        m_source.rewind();
        m_output.reset();
        m_result = m_transformer.doTransform(m_source, m_sheet, m_output);
    }
    bool succeeded() override {
        return m_result == 0 && m_output.text().size() > 1 &&
               m_output.text().find_first_of("0123456789") != std::string_view::npos;
    }

protected:
    explicit CallTrial(const std::string& call)
        : m_sheet(sweepFiles()
                      .write("call.xsl",
                             stylesheet("<xsl:output method='text'/><xsl:template match='/'>"
                                        "<xsl:value-of select=\"concat(vexa:Begin(), vexa:" +
                                        call + ", vexa:End())\"/></xsl:template>"))
                      .c_str()) {
        m_transformer.installExternalFunction("Begin", Switch(true));
        m_transformer.installExternalFunction("End", Switch(false));
    }

private:
    VEXAXslTransformer m_transformer;
    const I18NString m_sheet;
    ArrayInput m_source{SOURCE_TEXT};
    ArrayOutput m_output;
    int m_result = 0;
};

struct CallOfGetLocalizedString : CallTrial {
    // With a digit next to the message, as in the other results.
    CallOfGetLocalizedString() : CallTrial("GetLocalizedString(0, 'de_AT'), 1") {}
};

struct CallOfGetDateTime : CallTrial {
    CallOfGetDateTime() : CallTrial("GetDateTime()") {}
};

struct CallOfTimerCreate : CallTrial {
    CallOfTimerCreate() : CallTrial("TimerCreate()") {}
    /** The new timers live until the library is unloaded. */
    long blocksKept() const override { return 2; }
};

struct CallOfTimerStart : CallTrial {
    CallOfTimerStart() : CallTrial("TimerStart(7)") {}
};

struct CallOfTimerStop : CallTrial {
    CallOfTimerStop() : CallTrial("TimerStop(7)") {}
};

struct CallOfTimerTotal : CallTrial {
    CallOfTimerTotal() : CallTrial("TimerTotal(7)") {}
};

struct CallOfTimerReset : CallTrial {
    CallOfTimerReset() : CallTrial("TimerReset(7)") {}
};

struct CallOfTimerDestroy : CallTrial {
    CallOfTimerDestroy() : CallTrial("TimerDestroy(8)") {}
};

} // namespace

std::vector<Operation> functionOperations() {
    return {
        {"I18NStringToXalanDOMString", Engine::Started, prepared<ToEngineString>},
        {"XalanDOMStringToI18NString", Engine::Started, prepared<FromEngineString>},
        {"TqXsltFunction::clone", Engine::Started, prepared<CloneForTheEngine>},
        {"GetLocalizedString", Engine::Started, prepared<CallOfGetLocalizedString>},
        {"GetDateTime", Engine::Started, prepared<CallOfGetDateTime>},
        {"TimerCreate", Engine::Started, prepared<CallOfTimerCreate>},
        {"TimerStart", Engine::Started, prepared<CallOfTimerStart>},
        {"TimerStop", Engine::Started, prepared<CallOfTimerStop>},
        {"TimerTotal", Engine::Started, prepared<CallOfTimerTotal>},
        {"TimerReset", Engine::Started, prepared<CallOfTimerReset>},
        {"TimerDestroy", Engine::Started, prepared<CallOfTimerDestroy>},
    };
}
