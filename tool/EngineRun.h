/**
 * @file
 * One transform of the library, with what it and the engine tell of it.
 */
#pragma once

#include "FailedFile.h"

#include <functional>
#include <string>

class VEXAXslTransformer;

/**
 * Runs a transform, and lets the engine's texts go where they belong.
 *
 * @param road the library's call, which returns its result code
 * @param quiet print no messages of the stylesheet
 * @throws Failure where the library reports one
 */
void runEngine(VEXAXslTransformer& transformer, const TransformDocuments& documents, bool quiet,
               const std::function<int()>& road);

/** Runs a transform by the library's files. @throws Failure where the library reports one */
void takeFileRoad(VEXAXslTransformer& transformer, const TransformDocuments& documents, bool quiet);

/** The same into a file that appears whole or not at all. @throws Failure */
void transformToFile(VEXAXslTransformer& transformer, const InputName& stylesheet,
                     const Source& source, const std::string& outputName, bool quiet);
