/// @file
/// What the transcripts show of each model.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "include/qtr_orvex.h"
#include "tests/transcripts/taped_light.h"

namespace orvex_test {

/// One section of a transcript. The preparation is not taken down.
struct Scene {
    std::string title;
    std::function<void(TapedLight&)> prepare;
    std::function<void(TapedLight&)> act;
};

/// How the title of a command's section begins.
constexpr const char* kCommandTitle = "command ";

/// The sections of a model's transcript, in order.
[[nodiscard]] std::vector<Scene> scenesOf(OrvexType model);

}  // namespace orvex_test
