// The same transform in one thread and in two threads, each with its own transformer.
#include "support/Work.h"

#include <vexa/VEXAXslTransformer.h>

#include <memory>
#include <sstream>

namespace {

Work::Call transformStreams(const std::string& source, const std::string& stylesheet) {
    const auto transformer = std::make_shared<VEXAXslTransformer>();
    return [transformer, source, stylesheet] {
        std::istringstream input(source);
        std::ostringstream output;
        require(transformer->doTransform(input, stylesheet.c_str(), output) == 0,
                transformer->getLastError());
        return output.str().size();
    };
}

} // namespace

Works makeWorks(const std::string& folder) {
    static const Library library; // until the program ends
    const std::string source = readFile(folder + "/rows-medium.xml");
    const std::string stylesheet = folder + "/table.xsl";
    const auto prepare = [source, stylesheet] { return transformStreams(source, stylesheet); };
    return {{"one", prepare, Work::KEEPS_SOURCES, 1}, {"two", prepare, Work::KEEPS_SOURCES, 2}};
}
