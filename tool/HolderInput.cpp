#include "HolderInput.h"

#include "EngineDiagnostics.h"
#include "Failure.h"

#include <vexa/VEXAXslTransformer.h>

std::unique_ptr<Dom2Dom> parseSource(VEXAXslTransformer& transformer, Source& source, bool quiet) {
    const InputName* const document = source.document();
    if (document && !document->isLocal()) {
        throw WrongUsage(source.name(), "only the command 'transform' reads from the network");
    }
    EngineDiagnostics diagnostics(quiet);
    auto holder = transformer.createDom2Dom();
    const I18NString systemId = document ? document->forEngine() : I18NString();
    if (!holder->InitializeInputSource(source.open(), systemId.c_str())) {
        const std::string reason = holder->getLastError();
        diagnostics.dropReportOf(reason);
        source.checkRead();
        throw Failure(source.name(), reason);
    }
    return holder;
}
