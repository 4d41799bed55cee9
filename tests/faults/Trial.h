/**
 * @file
 * A public operation, ready to be tried with memory running out in the middle of it.
 */
#pragma once

#include <memory>
#include <string>
#include <vector>

/** One use of an operation, over objects of its own that its constructor makes. */
class Trial {
public:
    Trial() = default;
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;
    virtual ~Trial() = default;

    /** Does the operation; memory runs out in here. */
    virtual void operate() = 0;

    /** Whether operate() had its whole effect. */
    virtual bool succeeded() = 0;

    /** Whether operate() returned with the failure told as its contract says. */
    virtual bool toldItsFailure() { return false; }

    /** Whether operate() catches everything that is thrown while there is memory for a report. */
    virtual bool reportsEverything() const { return false; }

    /** Blocks that a try may leave to the process, as is promised. */
    virtual long blocksKept() const { return 0; }

    /** Whether the same objects still do what they are for. */
    virtual bool servesOn() {
        operate();
        return succeeded();
    }
};

/** What an operation has to do with the engines. */
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
std::vector<Operation> holderOperations();
std::vector<Operation> functionOperations();
