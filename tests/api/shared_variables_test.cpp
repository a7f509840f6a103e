// The exported variables in a program that is linked with the library: there is one of each.
#include <dlfcn.h>
#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

#include "api/device_registry.h"
#include "device/models.h"
#include "discovery/device_list.h"
#include "include/qtr_orvex.h"
#include "log/log.h"
#include "sim/testbed.h"

namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

std::vector<std::string> lines;

void collect(const char* line) {
    lines.emplace_back(line);
}

/// What the library's own reference of this symbol refers to.
const void* inLibrary(const char* symbol) {
    static void* const library = ::dlopen(ORVEX_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    const void* const reference = library != nullptr ? ::dlsym(library, symbol) : nullptr;
    return reference != nullptr ? *static_cast<const void* const*>(reference) : nullptr;
}

class SharedVariables : public ::testing::Test {
  protected:
    ~SharedVariables() override {
        ORVEX_SetLogBits(0x7F);
        ORVEX_SetLogMode(0);
        ORVEX_SetLogFile("./lib_debug.log");
        ORVEX_RegisterLogCallback(nullptr);
    }
};

TEST_F(SharedVariables, AreTheLibrarysOwn) {
    EXPECT_EQ(&gl_log_bits, inLibrary("gl_log_bits"));
    EXPECT_EQ(&gl_log_method, inLibrary("gl_log_method"));
    EXPECT_EQ(&gl_log_filename, inLibrary("_Z15gl_log_filenameB5cxx11"));
    EXPECT_EQ(&gl_cb, inLibrary("gl_cb"));
    EXPECT_EQ(&gl_lock, inLibrary("gl_lock"));
    EXPECT_EQ(&gl_devs, inLibrary("gl_devs"));
    EXPECT_EQ(&gl_type_names, inLibrary("_Z13gl_type_namesB5cxx11"));
    EXPECT_EQ(&gl_usb_pid_types, inLibrary("gl_usb_pid_types"));
    EXPECT_EQ(&gl_cmd_lamp, inLibrary("_Z11gl_cmd_lampB5cxx11"));
    EXPECT_EQ(&gl_cmd_lamp_ext, inLibrary("_Z15gl_cmd_lamp_extB5cxx11"));
    EXPECT_EQ(&gl_cmd_spruce, inLibrary("_Z13gl_cmd_spruceB5cxx11"));
    EXPECT_EQ(&gl_cmd_tamar, inLibrary("_Z12gl_cmd_tamarB5cxx11"));
    EXPECT_EQ(&gl_cmd_willow, inLibrary("_Z13gl_cmd_willowB5cxx11"));
}

TEST_F(SharedVariables, ShowWhatTheCallsSet) {
    EXPECT_EQ(gl_log_bits, 0x7Fu);
    EXPECT_EQ(gl_log_method, 0);
    EXPECT_EQ(gl_log_filename, "./lib_debug.log");
    EXPECT_EQ(gl_cb, nullptr);
    ORVEX_SetLogBits(0x1234);
    ORVEX_SetLogMode(7);
    ORVEX_SetLogFile("/tmp/a file whose name is too long to be kept within the string");
    ORVEX_RegisterLogCallback(collect);
    EXPECT_EQ(gl_log_bits, 0x1234u);
    EXPECT_EQ(gl_log_method, 7);
    EXPECT_EQ(gl_log_filename, "/tmp/a file whose name is too long to be kept within the string");
    EXPECT_EQ(gl_cb, collect);
}

TEST_F(SharedVariables, ChangeWhatTheCallsSee) {
    gl_log_bits = 0x21;
    gl_log_method = 3;
    EXPECT_EQ(ORVEX_GetLogBits(), 0x21u);
    EXPECT_EQ(ORVEX_GetLogMode(), 3);
    lines.clear();
    gl_log_method = 2;
    gl_cb = collect;
    EXPECT_EQ(ORVEX_OpenDeviceEx(0), 0xA0515002u);
    EXPECT_THAT(lines, ElementsAre("Error: ORVEX_OpenDeviceEx: handle was nullptr"));
}

TEST_F(SharedVariables, ServeALoggerOfTheProgram) {
    lines.clear();
    ORVEX_RegisterLogCallback(collect);
    ORVEX_SetLogMode(2);
    { Logger(0x10) << "five: " << 5; }
    ORVEX_SetLogBits(0x1);
    { Logger(0x10) << "not logged"; }
    EXPECT_THAT(lines, ElementsAre("Warning: five: 5"));
}

TEST_F(SharedVariables, HoldTheDevicesOfAScan) {
    ORVEX_SetLogBits(0);
    orvex::sim::Testbed testbed;
    const std::string port = testbed.plug(orvex::sim::UsbIdentity{});
    EXPECT_TRUE(gl_devs.empty());
    std::uint64_t handles[2] = {};
    std::uint32_t found = 0;
    EXPECT_EQ(ORVEX_ScanDevices(handles, 2, &found), 0u);
    ASSERT_EQ(gl_devs.size(), 1u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(gl_devs.begin()->first), handles[0]);
    EXPECT_EQ(gl_devs.begin()->second->getComPort(), "/dev/ttyACM0");
    testbed.unplug(port);
    EXPECT_EQ(ORVEX_ScanDevices(handles, 2, &found), 0u);
    EXPECT_TRUE(gl_devs.empty());
}

TEST_F(SharedVariables, HoldTheTables) {
    EXPECT_EQ(gl_cmd_lamp.size(), 13u);
    EXPECT_EQ(gl_cmd_lamp_ext.size(), 13u);
    EXPECT_EQ(gl_cmd_spruce.size(), 56u);
    EXPECT_EQ(gl_cmd_tamar.size(), 70u);
    EXPECT_EQ(gl_cmd_willow.size(), 76u);
    EXPECT_EQ(gl_cmd_tamar.at("Connect"), "co\r");
    EXPECT_EQ(gl_type_names.at(8), "Tamar");
    EXPECT_THAT(gl_usb_pid_types,
                ::testing::UnorderedElementsAre(Pair(0xEA02, 2u), Pair(0xEA08, 8u)));
}

}  // namespace
