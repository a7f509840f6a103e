// A device's connection, its exchanges and its read-out.
#include "tests/soak/device_model.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "tests/soak/commands.h"
#include "tests/soak/refusal.h"
#include "tests/soak/reply_text.h"

namespace orvex_soak {

namespace {

using Kind = Event::Kind;

constexpr std::size_t kLongestRequest = 1023;
constexpr std::size_t kLongestReply = 1024;
constexpr const char* kModelNames[] = {"Alder", "Birch", "Cedar",  "Hazel", "Larch",
                                       "Maple", "Rowan", "Spruce", "Tamar", "Willow"};

template <std::size_t N>
void setText(char (&target)[N], const std::string& text) {
    std::memset(target, 0, N);
    std::memcpy(target, text.data(), std::min(text.size(), N - 1));
}

}  // namespace

DeviceModel::DeviceModel(OrvexType type, std::string path, std::uint64_t handle)
    : type_(type), path_(std::move(path)), handle_(handle) {
    state_.iSize = 2008;
}

std::uint32_t DeviceModel::open(unsigned baud, Transcript& port) {
    return statusOf([&] {
        if (count_ != 0) {
            refuseUnless(connected_, ORVEX_ERR_NOT_CONNECTED);
            ++count_;
            return;
        }
        refuseUnless(baud >= 9600, ORVEX_ERR_INVALID_ARG);
        connect(port);
        if (knows("EnableExtendedCommands")) {
            query("EnableExtendedCommands", port);
        }
        readOut(port);
        count_ = 1;
    });
}

void DeviceModel::connect(Transcript& port) {
    if (std::exchange(connected_, false)) {
        port.expect(Kind::closed);
    }
    const Event& opening = port.take("open");
    refuseUnless(opening.kind != Kind::openRefused, ORVEX_ERR_NO_DEVICE);
    requireThat(opening.kind == Kind::opened, "the port must be opened");
    if (port.nextIs(Kind::settingsRefused)) {
        port.expect(Kind::settingsRefused);
        port.expect(Kind::closed);
        throw Refusal{ORVEX_ERR_NO_DEVICE};
    }
    connected_ = true;
    try {
        query("Connect", port);
    } catch (const Refusal&) {
        port.expect(Kind::closed);
        connected_ = false;
        throw;
    }
}

void DeviceModel::close(Transcript& port) {
    if (!connected_ || --count_ != 0) {
        return;
    }
    try {
        if (knows("CloseShutter")) {
            query("CloseShutter", port);
        }
        if (knows("Disconnect")) {
            query("Disconnect", port);
        }
    } catch (const Refusal&) {
        // The connection ends whatever the device says.
    }
    port.expect(Kind::closed);
    connected_ = false;
    reset();
}

void DeviceModel::destroy(Transcript& port) const {
    if (connected_) {
        port.expect(Kind::closed);
    }
}

void DeviceModel::reset() {
    state_ = {};
    state_.iSize = 2008;
    onList_.clear();
    allList_.clear();
    internalOn_ = false;
    enabled_ = false;
    groupChanged_ = false;
}

std::uint32_t DeviceModel::execute(const std::string& name, const std::string& value,
                                   std::string& reply, Transcript& port) {
    return statusOf([&] { reply = command(name, value, port); });
}

std::string DeviceModel::command(const std::string& name, const std::string& value,
                                 Transcript& port) const {
    const auto request = requestOf(type_, name);
    refuseUnless(request.has_value(), ORVEX_ERR_NOT_SUPPORTED);
    refuseUnless(connected_, ORVEX_ERR_NOT_CONNECTED);
    return exchange(*request + value, port);
}

std::string DeviceModel::query(const std::string& name, Transcript& port) const {
    return command(name, "", port);
}

std::string DeviceModel::exchange(const std::string& request, Transcript& port) const {
    refuseUnless(request.size() <= kLongestRequest, ORVEX_ERR_INVALID_ARG);
    const bool ended = request.find('\r') != std::string::npos;
    const std::string frame = ended ? request : request + "\r";
    const Event& purge = port.take("purge before " + frame);
    refuseUnless(purge.kind != Kind::purgeRefused, ORVEX_ERR_IO);
    requireThat(purge.kind == Kind::purged, "a purge must come before a request");
    const Event& sent = port.take("request " + frame);
    requireThat(sent.request == frame, "sent " + textOf(sent) + ", but must send " + frame);
    refuseUnless(sent.kind == Kind::sent, ORVEX_ERR_SEND);
    const std::string reply =
        sent.reply.substr(0, std::min(sent.reply.find('\r'), kLongestReply - 1) + 1);
    const bool whole = reply.size() == kLongestReply || (!reply.empty() && reply.back() == '\r');
    refuseUnless(whole, ORVEX_ERR_RECV);
    refuseUnless(reply != "e\r", ORVEX_ERR_IO);
    return reply;
}

bool DeviceModel::knows(const std::string& name) const {
    return requestOf(type_, name).has_value();
}

bool DeviceModel::isLed() const noexcept {
    return (state_.iCapabilities & 0x10) != 0;
}

void DeviceModel::readOut(Transcript& port) {
    const bool channels = type_ > 5;
    state_.iCapabilities = channels ? 16 : type_ == 0 ? 1 : 3;
    setText(state_.szModelName, kModelNames[type_]);
    state_.hDevice = handle_;
    fitted_.clear();
    if (channels) {
        readPositions(port);
        readLeds(port);
    } else {
        readLamp(port);
    }
    allList_.clear();
    for (int k = 1; k <= state_.iNumChannels; ++k) {
        append(allList_, k);
    }
}

void DeviceModel::readPositions(Transcript& port) {
    int count = 0;
    for (const int wavelength : numbersIn(query("GetWaveLengthLED", port))) {
        refuseUnless(count < 16, ORVEX_ERR_MAX_CHANNEL);
        if (wavelength < 1) {
            break;
        }
        OrvexChannel& channel = state_.aChannels[count];
        channel.iWavelength = wavelength;
        if (wavelength != 999) {
            const std::size_t ordinal = fitted_.size();
            channel.iGroup = ordinal >= 3 && ordinal <= 6 ? 1 : 0;
            fitted_.push_back(count);
        }
        ++count;
    }
    state_.iNumChannels = count;
    for (int k = 0; k < count && fitted_.size() < 5; ++k) {
        state_.aChannels[k].iGroup = 0;
    }
    state_.iExtendedChannels = count >= 8 ? 1 : 0;
    state_.iCapabilities |= count >= 8 ? 0x20U : 0U;
}

void DeviceModel::readLamp(Transcript& port) {
    OrvexChannel& lamp = state_.aChannels[0];
    state_.iNumChannels = 1;
    lamp.iWavelength = 500;
    state_.iUnitStatus = numberIn(query("GetUnitStatus", port));
    lamp.iMinIntensity = 0;
    lamp.iMaxIntensity = 40;
    lamp.iIntensityStep = 10;
    if (type_ == ORVEX_TYPE_ALDER) {
        lamp.iIntensity = 10 * numberIn(query("GetIntensityH4", port));
        return;
    }
    lamp.iMinIntensity = 10 * numberIn(query("MinimumIntensityPercentage", port));
    lamp.iMaxIntensity = 1000;
    lamp.iIntensity = 10 * numberIn(query("GetIntensity", port));
    lamp.iTemperature = numberIn(query("GetTemperature", port));
}

void DeviceModel::readLeds(Transcript& port) {
    const auto perChannel = [this](const auto& pieces, auto store) {
        for (std::size_t k = 0; k < pieces.size() && static_cast<int>(k) < state_.iNumChannels;
             ++k) {
            store(state_.aChannels[k], pieces[k]);
        }
    };
    perChannel(numbersIn(query("GetUnitStatus", port)), [this](OrvexChannel& channel, int state) {
        channel.iState = state;
        state_.iUnitStatus = state;
    });
    perChannel(numbersIn(query("MinimumIntensityPercentage", port)),
               [](OrvexChannel& channel, int minimum) {
                   channel.iMinIntensity = minimum;
                   channel.iMaxIntensity = 1000;
                   channel.iIntensityStep = 10;
               });
    perChannel(numbersIn(query("GetIntensity", port)),
               [](OrvexChannel& channel, int intensity) { channel.iIntensity = intensity; });
    perChannel(numbersIn(query("GetTemperature", port)),
               [](OrvexChannel& channel, int degrees) { channel.iTemperature = degrees; });
    perChannel(
        piecesOf(query("GetNameLED", port), ",\r"),
        [](OrvexChannel& channel, const std::string& name) { setText(channel.szLedName, name); });
    const std::string serial = query("GetUnitSerialNumber", port);
    state_.iSerialNumber = numberIn(serial.substr(serial.rfind('-') + 1));
}

}  // namespace orvex_soak
