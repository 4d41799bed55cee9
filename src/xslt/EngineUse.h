/**
 * @file
 * How long the engines stay initialized.
 */
#pragma once

#include <memory>

/**
 * Keeps the engines initialized. The first use initializes them; they stay so until the library is
 * unloaded, or the process ends, and the last use is gone. Counted together with the uses of the
 * classic interface.
 */
using EngineUse = std::shared_ptr<const void>;

/**
 * Any thread may ask.
 * @throws vexa::Error: Usage while the process ends and no use is left; what the engines throw
 * while they are initialized
 */
EngineUse useEngines();
