#include "tests/threads/fleet.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "include/qtr_orvex.h"
#include "tests/support/fake_udev.h"

namespace orvex_threads {

namespace {

constexpr int kFewExchanges = 200;
constexpr int kLeastExchanges = 8;

}  // namespace

int exchangesPerThread() {
    const char* const asked = std::getenv("ORVEX_STRESS_EXCHANGES");
    return asked != nullptr ? std::max(std::stoi(asked), kLeastExchanges) : kFewExchanges;
}

void inThreads(const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back(work, thread);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

Fleet::Fleet() {
    ORVEX_SetLogBits(0);
}

Fleet::~Fleet() {
    ORVEX_SetLogBits(0);
    ORVEX_SetLogMode(LOG_METHOD_STDOUT);
    ORVEX_RegisterLogCallback(nullptr);
    for (const std::uint64_t handle : handles_) {
        ORVEX_CloseDevice(handle);
    }
    devices_.clear();
    scan();
}

void Fleet::attach(std::size_t count) {
    while (devices_.size() < count) {
        devices_.push_back(std::make_unique<WatchedDevice>());
    }
    scan();
    for (const auto& device : devices_) {
        for (const std::uint64_t handle : std::vector(handles_)) {
            std::array<char, 128> port{};
            ASSERT_EQ(ORVEX_GetDeviceInfo(handle, nullptr, port.data(), port.size(), nullptr), 0U);
            if (device->path() == port.data()) {
                handles_.push_back(handle);
            }
        }
    }
    handles_.erase(handles_.begin(), handles_.begin() + static_cast<std::ptrdiff_t>(count));
    ASSERT_EQ(handles_.size(), count);
    for (const std::uint64_t handle : handles_) {
        ASSERT_EQ(ORVEX_OpenDeviceEx(handle), 0U);
    }
}

/// Takes the handles of the devices that are there, in any order.
void Fleet::scan() {
    orvex_test::FakeUdev udev;
    for (const auto& device : devices_) {
        udev.ports.push_back(orvex_test::tamarPort(static_cast<int>(udev.ports.size())));
        udev.ports.back().node = device->path();
    }
    handles_.assign(devices_.size() + 1, 0);
    std::uint32_t found = 0;
    EXPECT_EQ(
        ORVEX_ScanDevices(handles_.data(), static_cast<std::uint32_t>(handles_.size()), &found),
        0U);
    EXPECT_EQ(found, devices_.size());
    handles_.resize(devices_.size());
}

bool Fleet::exchange(std::size_t device, int thread, int number) const {
    const std::string value = std::to_string(thread) + "." + std::to_string(number);
    std::array<char, 64> reply{};
    const std::uint32_t status = ORVEX_ExecuteCommandWithValue(
        handles_[device], "GetUnitSerialNumber", reply.data(), reply.size(), value.c_str());
    return status == ORVEX_OK && reply.data() == value + "\r";
}

void Fleet::expectSeen(std::size_t requestsEach) const {
    for (const auto& device : devices_) {
        EXPECT_EQ(device->numbered(), requestsEach);
        EXPECT_THAT(device->complaints(), testing::IsEmpty());
    }
}

void reportRate(std::size_t exchanges, const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    std::cout << exchanges << " exchanges in " << taken.count() << " s, "
              << static_cast<long>(static_cast<double>(exchanges) / taken.count()) << " per second"
              << std::endl;
}

}  // namespace orvex_threads
