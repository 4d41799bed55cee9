/**
 * @file
 * What `vexa-xslt --version` prints.
 */
#pragma once

#include <string>

std::string versionText();
