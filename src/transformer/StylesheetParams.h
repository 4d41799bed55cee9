/**
 * @file
 * How engines are given the parameters of a transformer.
 */
#pragma once

#include "engine/EngineStrings.h"

#include <map>

/** Sets each parameter, in the order of the names. `Engine` is a transformer or a processor. */
template <typename Engine>
void setStylesheetParams(const std::map<I18NString, I18NString>& params, Engine& engine) {
    for (const auto& [name, value] : params) {
        engine.setStylesheetParam(toEngineString(name), toEngineString(value));
    }
}
