#pragma once

#include <span>
#include <string>

#include <3dzel.h>

/// An operation on a whole scene that a command line can ask for.
struct SceneStep {
    enum Value { NONE, LENGTH, ANGLE, COUNT };

    const char* name;    ///< of the option, without dashes
    Value value;         ///< what may, or must, stand behind '='
    bool needsValue;
    const char* help;
    /// False when there was nothing to do. `text`: a value that CheckStepValue has passed, "true" for none.
    bool (*run)(C3DScene& scene, const std::string& text);
};

std::span<const SceneStep> GetSceneSteps();
/// Empty, or what is wrong with the value.
std::string CheckStepValue(const SceneStep& step, const std::string& text);
