/**
 * @file
 * Start and stop of the library, and its version record.
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
 * Starts the library for one user, before that user's first VEXAXslTransformer. Starts are counted
 * over the whole process: the first one starts the XML parser and the XSLT processor, each further
 * one only counts.
 *
 * After more stops than starts a start only counts too, until the count is back at zero.
 *
 * A host may have started Xerces-C itself, with a memory manager of its own if it likes. It must
 * not call XalanTransformer::initialize itself: the XSLT processor aborts the process at its second
 * stop.
 *
 * Threads: any thread, at any time; a second thread waits until the engines are fully up.
 *
 * Exceptions: what the engines throw while they start. Such a start does not count, and a later one
 * tries again. An engine that ran out of memory in the middle of its own start may not survive
 * that.
 *
 * @param ignored is not looked at and may be null
 * @return 0
 */
VEXA_EXPORT int TQXslTransformer_Initialize(const char* ignored);

/**
 * Ends one user's use of the library, after that user's last VEXAXslTransformer is gone. The stop
 * that matches the first start stops the engines. Stops without a start are counted as well.
 *
 * Threads: any thread, at any time.
 *
 * Exceptions: what the engines throw while they stop. Such a stop does not count.
 *
 * @param ignored is not looked at and may be null
 * @return 0
 */
VEXA_EXPORT int TQXslTransformer_Terminate(const char* ignored);

/**
 * The version record: nine what-strings, each beginning with "@(#)", that tools such as what(1)
 * find in the library's file. In this order: a rule; the product; the product with its version; the
 * maker, the library and its build number; the library; three legal notices; a rule. The texts live
 * as long as the library is loaded.
 */
VEXA_EXPORT extern const char* const nrbVersionInfo[9];

} // extern "C"
