/**
 * @file
 * An object of the engine that is built when it is first needed.
 */
#pragma once

#include "engine/EngineMemory.h"

#include <optional>

/** For functors of the engine whose construction costs more than a whole small transform. */
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
