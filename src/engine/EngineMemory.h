/**
 * @file
 * The memory manager of engine objects.
 */
#pragma once

#include <xalanc/Include/XalanMemoryManagement.hpp>

/** The memory manager that Xerces-C was initialized with. Engine objects allocate from it. */
inline xercesc::MemoryManager& engineMemory() {
    return xalanc::XalanMemMgrs::getDefaultXercesMemMgr();
}
