#include "tests/fuzz/support/expected_write.h"

namespace orvex_fuzz {

namespace {

/// The intensity a channel takes: whole steps toward zero, then the limits, the lower one last.
std::int32_t taken(std::int32_t wanted, const OrvexChannel& channel) {
    std::int32_t value = wanted;
    if (channel.iIntensityStep != 0) {
        value -= value % channel.iIntensityStep;
    }
    if (value > channel.iMaxIntensity) {
        value = channel.iMaxIntensity;
    }
    if (value < channel.iMinIntensity) {
        value = channel.iMinIntensity;
    }
    return value;
}

}  // namespace

WrittenRecord expectedWrite(const OrvexStruct& before, const OrvexStruct& written) {
    WrittenRecord result{before};
    OrvexStruct& record = result.record;
    if (written.iDeviceInfo != 0) {
        record.iDeviceInfo = written.iDeviceInfo;
    }
    bool isSelected = false;
    for (std::int32_t k = 0; k < written.iNumChannels; ++k) {
        OrvexChannel& channel = record.aChannels[k];
        const OrvexChannel& wanted = written.aChannels[k];
        if (wanted.iIntensity != channel.iIntensity) {
            channel.iIntensity = taken(wanted.iIntensity, channel);
            result.hasNewIntensity = true;
        }
        if (wanted.iState == channel.iState) {
            continue;
        }
        result.hasNewState = true;
        channel.iState = wanted.iState;
        if (channel.iGroup == 1) {
            const bool isOn = wanted.iState % 2 != 0;
            if (isOn && !isSelected) {
                isSelected = true;
                result.hasNewSelection = record.aiGroupSlot[1] != k;
                record.aiGroupSlot[1] = k;
            } else {
                channel.iState = 0;
            }
        }
    }
    return result;
}

}  // namespace orvex_fuzz
