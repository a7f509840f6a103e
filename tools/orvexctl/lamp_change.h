/// @file
/// Changes of a lamp.
#pragma once

#include "tools/orvexctl/channel_change.h"

namespace orvex::tools {

/// Sets the intensity, then opens or closes the shutter.
void changeLamp(Light& light, const ChannelChange& change, Report& report);

/// @param command "TurnLampOn", "OpenShutter" and the like
/// @param words   what has happened then
void switchLamp(Light& light, const char* command, const char* words, Report& report);

/// @throws Failure unless the model has the command
void requireCommand(const Light& light, const char* command, const char* what);

}  // namespace orvex::tools
