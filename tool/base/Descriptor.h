/**
 * @file
 * An open file of the operating system.
 */
#pragma once

#include <unistd.h>
#include <utility>

/** Owns a file descriptor. */
class Descriptor {
public:
    /** @param descriptor -1 for none */
    explicit Descriptor(int descriptor = -1) : m_nDescriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept
        : m_nDescriptor(std::exchange(other.m_nDescriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_nDescriptor, other.m_nDescriptor);
        return *this;
    }
    ~Descriptor() {
        if (m_nDescriptor >= 0) {
            close(m_nDescriptor);
        }
    }

    int get() const { return m_nDescriptor; }

private:
    int m_nDescriptor;
};
