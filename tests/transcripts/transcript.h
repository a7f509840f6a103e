/// @file
/// A model's transcript as text.
#pragma once

#include <string>

#include "include/qtr_orvex.h"

namespace orvex_test {

constexpr OrvexType kModelCount = 10;

/// "Cedar"
[[nodiscard]] std::string modelName(OrvexType model);

/// Where a model's reviewed transcript is kept.
[[nodiscard]] std::string transcriptPath(OrvexType model);

/// Plays all scenes of a model and writes down what happened.
/// @throws std::runtime_error when a scene cannot be played or does not go the same way twice
[[nodiscard]] std::string recordTranscript(OrvexType model);

}  // namespace orvex_test
