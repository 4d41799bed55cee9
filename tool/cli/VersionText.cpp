#include "cli/VersionText.h"

#include <vexa/TQXslTransformer.h>

namespace {

/** A row of the version record without its what-marker and line end. */
std::string row(int number) {
    const std::string text = nrbVersionInfo[number - 1];
    const auto begin = text.find_first_not_of(' ', sizeof "@(#)" - 1);
    return text.substr(begin, text.find_last_not_of('\n') + 1 - begin);
}

} // namespace

std::string versionText() {
    const std::string product = row(2);
    const std::string version = row(3).substr(product.size() + sizeof " v" - 1);
    return "vexa-xslt (" + product + ") " + version + "\n" + row(4) + "\n" + row(6) + "\n" + row(8);
}
