#pragma once

#include <span>
#include <string>

#include <3dzel.h>

/// An operation on a whole scene that a command line can ask for.
struct SceneStep {
    enum Value { NONE, LENGTH, ANGLE, COUNT };

    const char* name;    ///< of the option, without dashes
    Value value;         ///< what may, or must, stand behind the name
    bool needsValue;
    const char* help;
    /// False when there was nothing to do. `text`: a value that CheckStepValue has passed, "true" for none.
    bool (*run)(C3DScene& scene, const std::string& text);
    /// The value for a scene where none is given; null: "true" will do.
    std::string (*choose)(C3DScene& scene) = nullptr;
    const char* valueName = nullptr;    ///< for the help, where a value is needed
    unsigned int most = 0;              ///< of a count
};

std::span<const SceneStep> GetSceneSteps();
/// Empty, or what is wrong with the value.
std::string CheckStepValue(const SceneStep& step, const std::string& text);
