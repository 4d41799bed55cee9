/**
 * @file
 * The inside of a Stylesheet.
 */
#pragma once

#include "xslt/EngineUse.h"
#include "xslt/InstructionList.h"
#include "xslt/MemoryPool.h"
#include "xslt/Sources.h"
#include "xslt/StylesheetNames.h"

#include <vexa/xslt/Stylesheet.h>

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <xalanc/XPath/XPathFactoryDefault.hpp>
#include <xalanc/XSLT/StylesheetConstructionContextDefault.hpp>
#include <xalanc/XSLT/StylesheetRoot.hpp>

namespace vexa {

/** A compiled stylesheet with all of its memory. */
class Stylesheet::Data {
public:
    Data();
    Data(const Data&) = delete;
    Data& operator=(const Data&) = delete;
    ~Data();

    void compile(const Input& input, Operation& operation);
    /** From now on threads may share it. */
    void seal() { m_memory.seal(); }

    const std::string& uri() const { return m_modules.front(); }
    const std::vector<std::string>& modules() const { return m_modules; }
    const xalanc::StylesheetRoot& root() const { return *m_root; }
    /** Whether the instruction with this locator is an xsl:message that ends the transform. */
    bool endsTransform(const xercesc::Locator* locator) const {
        return m_endingMessages.count(locator) > 0;
    }

    /** The template that is a function of the stylesheet; null if there is none of this name. */
    const xalanc::ElemTemplateElement* findFunction(const xalanc::XalanDOMString& uri,
                                                    const xalanc::XalanDOMString& name) const;

    /** All that can be executed. It is listed at the first call of any thread. */
    const InstructionList& instructions() const;

private:
    class Construction;

    EngineUse m_engines = useEngines();
    std::vector<std::string> m_modules;
    /** Of modules that the resolver answered from another place: what was asked to what is. */
    std::map<std::string, std::string> m_realUris;
    std::set<const xercesc::Locator*> m_endingMessages;
    StylesheetNames m_names;
    /** With all of the compiled stylesheet, which is not destroyed piece by piece. */
    MemoryPool m_memory;
    const xalanc::StylesheetRoot* m_root = nullptr;
    /** As they were read, with some that nothing executes. */
    std::vector<const xalanc::ElemTemplateElement*> m_elements;
    mutable std::mutex m_listing;
    mutable std::unique_ptr<const InstructionList> m_instructions;
};

class StylesheetAccess {
public:
    using Data = Stylesheet::Data;

    /** @throws Error: Usage for an empty stylesheet */
    static const Data& data(const Stylesheet& stylesheet);
};

} // namespace vexa
