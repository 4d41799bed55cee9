/**
 * @file
 * Passes the stylesheet parameters of a transformer to an engine.
 */
#pragma once

#include "engine/EngineStrings.h"

#include <map>

/** Sets all parameters in the order of the names. `Engine`: an engine transformer or processor. */
template <typename Engine>
void setStylesheetParams(const std::map<I18NString, I18NString>& params, Engine& engine) {
    for (const auto& [name, value] : params) {
        engine.setStylesheetParam(toEngineString(name), toEngineString(value));
    }
}
