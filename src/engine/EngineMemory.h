/**
 * @file
 * The memory manager of the engine's objects.
 */
#pragma once

#include <xalanc/Include/XalanMemoryManagement.hpp>

/** The memory manager of whoever initialized Xerces-C: the engine's objects allocate from it. */
inline xercesc::MemoryManager& engineMemory() {
    return xalanc::XalanMemMgrs::getDefaultXercesMemMgr();
}
