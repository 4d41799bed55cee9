/**
 * @file
 * Initialization and termination of the library, and its version record.
 *
 *     TQXslTransformer_Initialize(nullptr);
 *     {
 *         VEXAXslTransformer transformer;
 *         ...
 *     }
 *     TQXslTransformer_Terminate(nullptr);
 */
#pragma once

#include <vexa/VEXAExport.h>

extern "C" {

/**
 * Initializes the library for one user. Call it before the user's first VEXAXslTransformer.
 *
 * The library counts the calls in the whole process. The first call initializes the XML parser and
 * the XSLT processor; further calls only count. After more terminations than initializations, a
 * call only counts too, until the count is back at zero.
 *
 * The host may initialize Xerces-C itself before, also with its own memory manager. It must not
 * call XalanTransformer::initialize(): the XSLT processor aborts the process at the second
 * XalanTransformer::terminate().
 *
 * Threads: any thread, at any time. A second thread waits until the engines are initialized.
 *
 * Exceptions: what the engines throw during their initialization. The call then does not count, and
 * a later call tries again. If an engine runs out of memory during its initialization, a later call
 * may crash.
 *
 * @param ignored not used; may be null
 * @return 0
 */
VEXA_EXPORT int TQXslTransformer_Initialize(const char* ignored);

/**
 * Terminates the library for one user. Call it after the user's last VEXAXslTransformer is
 * destroyed. The call that matches the first initialization terminates the engines. A call without
 * a matching initialization is counted too.
 *
 * Threads: any thread, at any time.
 *
 * Exceptions: what the engines throw during their termination. The call then does not count.
 *
 * @param ignored not used; may be null
 * @return 0
 */
VEXA_EXPORT int TQXslTransformer_Terminate(const char* ignored);

/**
 * The version record: nine what-strings. Each begins with "@(#)", so that tools such as what(1)
 * find them in the library file. In this order: a line of hyphens; the product; the product and its
 * version; the maker, the library and its build number; the library; three legal notices; a line of
 * hyphens. The texts are valid as long as the library is loaded.
 */
VEXA_EXPORT extern const char* const nrbVersionInfo[9];

} // extern "C"
