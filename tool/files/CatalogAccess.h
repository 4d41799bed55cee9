/**
 * @file
 * XML catalogs, whose library is loaded when a reference needs it: that takes longer than to start
 * the program.
 */
#pragma once

#include <vexa/xslt/Options.h>

/** Asks the catalogs for each reference that is no existing file. */
vexa::Resolver lazyCatalogResolver();

/** @throws Failure if the library cannot be loaded */
void loadCatalogLibrary();

/** Where the system has its catalogs, and what they lead to. */
inline constexpr const char* CATALOG_FOLDERS[] = {"/etc/xml", "/usr/share/xml", "/usr/share/sgml"};
