#include "EngineRun.h"

#include "CommonOptions.h"
#include "EngineDiagnostics.h"
#include "Failure.h"
#include "NoNetwork.h"
#include "OutputFile.h"

#include <vexa/VEXAXslTransformer.h>

void runEngine(VEXAXslTransformer& transformer, const TransformDocuments& documents, bool quiet,
               const std::function<int()>& road) {
    EngineDiagnostics diagnostics(quiet);
    if (road() == 0) {
        tellRefusedNetwork();
        return;
    }
    const std::string reason = transformer.getLastError();
    const bool isAboutSource = diagnostics.dropReportOf(reason);
    documents.source.checkRead();
    throw Failure(failedFile(reason, documents, isAboutSource), readableReason(reason, documents));
}

void takeFileRoad(VEXAXslTransformer& transformer, const TransformDocuments& documents,
                  bool quiet) {
    runEngine(transformer, documents, quiet, [&] {
        return transformer.doTransform(documents.source.document()->forEngine(),
                                       documents.stylesheet.forEngine(),
                                       toText(documents.writePath));
    });
}

void transformToFile(VEXAXslTransformer& transformer, const InputName& stylesheet,
                     const Source& source, const std::string& outputName, bool quiet) {
    OutputFile output(outputName);
    takeFileRoad(transformer, {stylesheet, source, outputName, output.writePath()}, quiet);
    output.commit();
}
