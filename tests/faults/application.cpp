#include "tests/faults/application.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>

#include "api/device_registry.h"
#include "tests/faults/injector.h"

namespace orvex_faults {

namespace {

constexpr std::uint32_t kBaud = 9600;

/// A call of the library that is not counted as a step.
template <typename Call>
auto inside(Call call) {
    const InsideLibrary library;
    return call();
}

std::uint64_t registeredHandle() {
    return gl_devs.empty() ? 0 : reinterpret_cast<std::uintptr_t>(gl_devs.begin()->first);
}

}  // namespace

Application::Application(const Light& light, Port& port)
    : light_(light),
      port_(port),
      listing_(port.path(), light.product.empty() ? "ea08" : light.product) {
    registerByHand();
}

void Application::registerByHand() {
    if (light_.product.empty() && gl_devs.empty()) {
        auto device = std::make_unique<LightDevice>(light_.setup.model, port_.path());
        void* const handle = device->hDev();
        gl_devs[handle] = std::move(device);
    }
}

void Application::perform(Step step, const std::function<std::uint32_t()>& call) {
    Outcome outcome{step};
    injector().step = step;
    try {
        const InsideLibrary library;
        outcome.status = call();
    } catch (const std::bad_alloc&) {
        outcome.outOfMemory = true;
    } catch (...) {
        outcome.otherException = true;
    }
    outcome.openDescriptors = port_.openDescriptors();
    outcome.isRegistered = !gl_devs.empty();
    if (outcome.isRegistered) {
        outcome.openCount = gl_devs.begin()->second->getOpenCount();
    }
    outcomes_.push_back(outcome);
}

bool Application::lastSucceeded() const {
    const Outcome& last = outcomes_.back();
    return last.status == ORVEX_OK && !last.outOfMemory && !last.otherException;
}

void Application::scan() {
    perform(Step::Scan, [this] { return ORVEX_ScanDevices(slots_.data(), 4, &count_); });
}

void Application::use(Usage usage) {
    scan();
    handle_ = 0;
    perform(Step::Open, [this] {
        return ORVEX_OpenDevice(&handle_, ORVEX_TYPE_UNDEFINED, port_.path().c_str(), kBaud);
    });
    if (lastSucceeded() && usage == Usage::Whole) {
        operate();
    }
    listing_.isPluggedIn = false;
    perform(Step::Unplug, [this] { return ORVEX_ScanDevices(slots_.data(), 4, &count_); });
    listing_.isPluggedIn = true;
}

void Application::operate() {
    record_.iSize = sizeof record_;
    perform(Step::GetRecord, [this] { return ORVEX_GetOVStruct(handle_, &record_); });
    changeRecord();
    perform(Step::SetRecord, [this] { return ORVEX_SetOVStruct(handle_, &record_); });
    perform(Step::SwitchOn, [this] { return ORVEX_SwitchOrvex(handle_, true, true); });
    perform(Step::SwitchOff, [this] { return ORVEX_SwitchOrvex(handle_, true, false); });
    std::array<char, 64> reply{};
    perform(Step::Command, [this, &reply] {
        return ORVEX_ExecuteCommand(handle_, "GetSoftwareVersion", reply.data(), 64);
    });
    perform(Step::OpenAgain, [this] { return ORVEX_OpenDeviceEx(handle_); });
    if (lastSucceeded()) {
        perform(Step::CloseAgain, [this] {
            ORVEX_CloseDevice(handle_);
            return ORVEX_OK;
        });
    }
    perform(Step::Close, [this] {
        ORVEX_CloseDevice(handle_);
        return ORVEX_OK;
    });
}

/// One independent channel and one of the group, with other intensities; a lamp has no channels.
void Application::changeRecord() {
    record_.iDeviceInfo = 1;
    for (std::int32_t slot = 0; slot < record_.iNumChannels; slot += 3) {
        record_.aChannels[slot].iIntensity = 300 + 10 * slot;
        record_.aChannels[slot].iState = slot <= 3 ? 1 : 0;
    }
}

void Application::closeAll() {
    // As the program knows it: once for every open that it has not closed.
    if (gl_devs.empty()) {
        return;
    }
    const std::uint32_t opens = gl_devs.begin()->second->getOpenCount();
    ASSERT_LE(opens, 2u);
    for (std::uint32_t k = 0; k < opens; ++k) {
        inside([] { ORVEX_CloseDevice(registeredHandle()); });
    }
    EXPECT_EQ(gl_devs.begin()->second->getOpenCount(), 0u);
}

void Application::useAgain() {
    injector().start({});
    closeAll();
    registerByHand();
    EXPECT_EQ(inside([this] { return ORVEX_ScanDevices(slots_.data(), 4, &count_); }), ORVEX_OK);
    EXPECT_EQ(count_, 1u);
    EXPECT_EQ(slots_[0], registeredHandle());
    std::uint64_t handle = 0;
    ASSERT_EQ(inside([&handle] {
                  return ORVEX_OpenDevice(&handle, ORVEX_TYPE_UNDEFINED, nullptr, kBaud);
              }),
              ORVEX_OK);
    EXPECT_EQ(handle, registeredHandle());
    EXPECT_EQ(port_.openDescriptors(), 1u);
    expectRecordOfDevice();
    std::array<char, 64> reply{};
    EXPECT_EQ(inside([handle, &reply] {
                  return ORVEX_ExecuteCommand(handle, "GetSoftwareVersion", reply.data(), 64);
              }),
              ORVEX_OK);
    EXPECT_STREQ(reply.data(), "1.4.2\r");
    closeAll();
    EXPECT_EQ(port_.openDescriptors(), 0u);
}

/// What the library has read out is what the device's own state says.
void Application::expectRecordOfDevice() {
    OrvexStruct record{};
    record.iSize = sizeof record;
    ASSERT_EQ(inside([&record] { return ORVEX_GetOVStruct(registeredHandle(), &record); }),
              ORVEX_OK);
    if (light_.setup.model < ORVEX_TYPE_SPRUCE) {
        EXPECT_EQ(record.iNumChannels, 0);
        EXPECT_EQ(record.iCapabilities & ORVEX_CAP_LAMP, ORVEX_CAP_LAMP);
        return;
    }
    const orvex::sim::DeviceState state = port_.state();
    EXPECT_EQ(record.iSerialNumber, 42);
    std::int32_t slot = 0;
    for (const orvex::sim::Channel& channel : state.channels) {
        if (channel.wavelength == ORVEX_EMPTY_POSITION) {
            continue;
        }
        const OrvexChannel& read = record.aChannels[slot++];
        EXPECT_EQ(read.iWavelength, channel.wavelength);
        EXPECT_EQ(read.iIntensity, channel.intensity);
        EXPECT_EQ(read.iState, channel.on ? 1 : 0);
        EXPECT_EQ(read.iTemperature, channel.temperature);
        EXPECT_EQ(read.iMinIntensity, channel.minimum);
        EXPECT_EQ(read.szLedName, channel.name);
    }
    EXPECT_EQ(record.iNumChannels, slot);
}

void Application::pullOut() {
    listing_.isPluggedIn = false;
    EXPECT_EQ(inside([this] { return ORVEX_ScanDevices(slots_.data(), 4, &count_); }), ORVEX_OK);
    EXPECT_EQ(count_, 0u);
    EXPECT_EQ(slots_, (std::array<std::uint64_t, 4>{}));
    EXPECT_TRUE(gl_devs.empty());
    EXPECT_EQ(port_.openDescriptors(), 0u);
    EXPECT_EQ(listing_.unreleased(), 0u);
}

}  // namespace orvex_faults
