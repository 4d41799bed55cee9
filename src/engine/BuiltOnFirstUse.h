/**
 * @file
 * An engine object that is created when it is first used.
 */
#pragma once

#include "engine/EngineMemory.h"

#include <optional>

/** For engine functors whose constructors take longer than a small transform. */
template <typename Functor>
class BuiltOnFirstUse {
public:
    const Functor& get() const {
        if (!m_functor) {
            m_functor.emplace(engineMemory());
        }
        return *m_functor;
    }

private:
    mutable std::optional<Functor> m_functor;
};
