/**
 * @file
 * All memory of `new`: the second interface has memory of its own, and takes none from a host.
 */
#pragma once

/**
 * While one lives, `new` fails with std::bad_alloc after 64 MB. Endless recursion ends there. Each
 * block is still a block of its own to the sanitizer.
 */
class BoundedHeap {
public:
    BoundedHeap();
    BoundedHeap(const BoundedHeap&) = delete;
    BoundedHeap& operator=(const BoundedHeap&) = delete;
    ~BoundedHeap();
};
