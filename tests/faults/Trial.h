/**
 * @file
 * A public operation that is run while one of its allocations fails.
 */
#pragma once

#include <memory>
#include <string>
#include <vector>

/** One use of an operation, on objects that its constructor creates. */
class Trial {
public:
    Trial() = default;
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;
    virtual ~Trial() = default;

    /** Runs the operation. The failing allocation is in here. */
    virtual void operate() = 0;

    /** Whether operate() did all that it has to do. */
    virtual bool succeeded() = 0;

    /** Whether operate() returned and reported the failure as documented. */
    virtual bool reportedItsFailure() { return false; }

    /** Whether operate() catches every exception if there is memory for a report. */
    virtual bool reportsEverything() const { return false; }

    /** How many blocks a trial keeps until the end of the process, as documented. */
    virtual long blocksKept() const { return 0; }

    /** Whether the same objects can still be used after the failure. */
    virtual bool stillWorks() {
        operate();
        return succeeded();
    }
};

/** How an operation uses the engines. */
enum class Engine { Unused, Started, StartedByTheTrial };

struct Operation {
    std::string name;
    Engine engine;
    std::unique_ptr<Trial> (*prepare)();
};

template <typename SomeTrial>
std::unique_ptr<Trial> prepared() {
    return std::make_unique<SomeTrial>();
}

std::vector<Operation> platformOperations();
std::vector<Operation> transformerOperations();
std::vector<Operation> dom2DomOperations();
std::vector<Operation> functionOperations();
std::vector<Operation> xsltOperations();
