/**
 * @file
 * A library that uses the interface, to be loaded and unloaded.
 */
#include <vexa/xslt.h>

extern "C" __attribute__((visibility("default"))) int runPlugin() {
    const auto document = vexa::Document::parse(vexa::Input::text("<a><i>2</i><i>1</i></a>"));
    return vexa::XPath::compile("sum(//i)").evaluate(document).number() == 3 ? 0 : 1;
}
