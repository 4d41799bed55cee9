/**
 * @file
 * What elements of our own ask for while they are executed.
 */
#pragma once

#include "xslt/ResultAttributes.h"

#include <xalanc/XSLT/StylesheetExecutionContextDefault.hpp>

class Trace;

/** The context of every run. */
class RunContext : public xalanc::StylesheetExecutionContextDefault {
public:
    using StylesheetExecutionContextDefault::StylesheetExecutionContextDefault;

    /** From here on all goes to another result. */
    virtual void beginFurtherResult(const ResultAttributes& attributes,
                                    const xercesc::Locator* locator) = 0;
    virtual void endFurtherResult() = 0;
    /** The result of the function of the stylesheet that is executed. */
    virtual void setFunctionResult(const xalanc::XObjectPtr& result) = 0;
    /** Null where nobody asks for the steps of the run. */
    virtual Trace* trace() const = 0;
};
