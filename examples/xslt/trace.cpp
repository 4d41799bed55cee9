// Counts how often each template of a stylesheet is used:
//
//     trace report.xsl orders.xml
#include <cstdlib>
#include <iostream>
#include <vector>
#include <vexa/xslt.h>

namespace {

// [trace]
/** Counts the instructions that runs of a stylesheet execute. */
class Counter : public vexa::Tracer {
public:
    explicit Counter(const vexa::Stylesheet& stylesheet)
        : m_instructions(stylesheet.instructions()), m_counts(m_instructions.size()) {}

    void enter(const vexa::Step& step) override { ++m_counts[step.index()]; }
    void leave(const vexa::Step& /*step*/) noexcept override {}

    void printTemplates() const {
        for (std::size_t i = 0; i < m_counts.size(); ++i) {
            const vexa::Instruction& instruction = m_instructions[i];
            if (instruction.kind == vexa::Instruction::Kind::Template &&
                instruction.where.line != 0) {
                std::cout << m_counts[i] << " line " << instruction.where.line << ' '
                          << instruction.title << '\n';
            }
        }
    }

private:
    const std::vector<vexa::Instruction>& m_instructions;
    std::vector<std::size_t> m_counts;
};

void countTemplates(const vexa::Stylesheet& stylesheet, const vexa::Input& source) {
    Counter counter(stylesheet);
    vexa::Transformation run(stylesheet);
    run.onTrace(counter).toString(source);
    counter.printTemplates();
}
// [/trace]

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: trace STYLESHEET SOURCE\n";
        return EXIT_FAILURE;
    }
    try {
        countTemplates(vexa::Stylesheet::compile(vexa::Input::file(argv[1])),
                       vexa::Input::file(argv[2]));
        return EXIT_SUCCESS;
    } catch (const vexa::Error& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
