// What the rules for udev give: whose the port is, its lasting name, and peace from ModemManager.
#include <grp.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/support/child_program.h"
#include "tests/support/temporary_directory.h"
#include "tests/vm/outcome.h"
#include "tests/vm/usb_lights.h"

namespace {

namespace fs = std::filesystem;

using orvex_test::Outcome;
using orvex_test::run;
using orvex_test::runAs;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

/// The machine has a member of the group dialout and somebody who is not.
constexpr const char* kMember = "anna";
constexpr const char* kStranger = "otto";

class Access : public orvex_test::UsbLights {
  protected:
    static struct stat node(const std::string& port) {
        struct stat node {};
        EXPECT_EQ(::stat(port.c_str(), &node), 0);
        return node;
    }

    static std::string groupOf(const std::string& port) {
        const group* entry = ::getgrgid(node(port).st_gid);
        return entry != nullptr ? entry->gr_name : "";
    }

    /// udev's properties of a port, or of the USB device behind it.
    static std::string properties(const std::string& port, bool ofUsbDevice = false) {
        const std::string name = port.substr(port.rfind('/') + 1);
        const fs::path tty = fs::canonical("/sys/class/tty/" + name);
        const fs::path usb = tty.parent_path().parent_path().parent_path();
        return run({"/usr/bin/udevadm", "info", "--query=property",
                    "--path=" + (ofUsbDevice ? usb : tty).string()})
            .output;
    }

    static std::string target(const std::string& link) {
        std::error_code gone;
        return fs::canonical(link, gone);
    }
};

TEST_F(Access, IsForTheGroupDialoutAndForWhoeverSitsAtTheMachine) {
    for (const auto* light : {&plugTamar(), &plugCedar()}) {
        EXPECT_EQ(node(light->port()).st_mode, static_cast<mode_t>(S_IFCHR | 0660));
        EXPECT_EQ(groupOf(light->port()), "dialout");
        EXPECT_THAT(properties(light->port()), ContainsRegex("CURRENT_TAGS=.*:uaccess:"));
    }
}

TEST_F(Access, IsThereForAMemberOfTheGroup) {
    plugTamar();
    const Outcome outcome = runAs(kMember, "dialout", {ORVEXCTL, "exec", "GetUnitSerialNumber"});
    EXPECT_EQ(outcome.output, "TA-7\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(Access, IsRefusedToOthers) {
    const auto& light = plugTamar();
    const Outcome found = runAs(kStranger, "", {ORVEXCTL, "list"});
    EXPECT_THAT(found.output, HasSubstr("/dev/ttyACM0"));
    const Outcome outcome = runAs(kStranger, "", {ORVEXCTL, "info", "--force"});
    EXPECT_THAT(outcome.output, HasSubstr("no permission"));
    EXPECT_EQ(outcome.status, 4);
    EXPECT_TRUE(light.requests().empty());
}

TEST_F(Access, IsExplainedByTheDoctor) {
    plugTamar();
    const Outcome outcome = runAs(kStranger, "", {ORVEXCTL, "doctor"});
    EXPECT_EQ(outcome.status, 4);
    EXPECT_THAT(outcome.output, HasSubstr("/dev/ttyACM0 belongs to root:dialout (crw-rw----) and "
                                          "user otto is not in the group dialout\n"));
    EXPECT_THAT(outcome.output, HasSubstr("try: sudo usermod -aG dialout otto, then log in again"));
    EXPECT_THAT(outcome.output, HasSubstr("Not all is well.\n"));
    const Outcome member = runAs(kMember, "dialout", {ORVEXCTL, "doctor"});
    EXPECT_EQ(member.status, 0) << member.output;
}

TEST_F(Access, ByALastingNameWithTheSerialNumber) {
    auto& light = plugTamar();
    const std::string name = "/dev/orvex/by-id/Orvex_Tamar-TA-7";
    EXPECT_EQ(target(name), light.port());
    light.unplug();
    EXPECT_TRUE(orvex_test::waitForSystem([&] { return !orvex_test::isThere(name); }));
    light.plug();
    EXPECT_EQ(target(name), light.port());
}

TEST_F(Access, ByALastingNameWithTheSocketWithoutASerialNumber) {
    const auto& light = plugCedar();
    EXPECT_EQ(target("/dev/orvex/by-id/Orvex_Cedar-platform-dummy_hcd.0-usb-0:1:1.0"),
              light.port());
}

TEST_F(Access, IsDeniedToModemManager) {
    for (const auto* light : {&plugTamar(), &plugCedar()}) {
        EXPECT_THAT(properties(light->port()), HasSubstr("ID_MM_DEVICE_IGNORE=1\n"));
        EXPECT_THAT(properties(light->port()), HasSubstr("ID_MM_PORT_IGNORE=1\n"));
        EXPECT_THAT(properties(light->port(), true), HasSubstr("ID_MM_DEVICE_IGNORE=1\n"));
    }
}

TEST_F(Access, IsNoWorryOfTheDoctorWhenModemManagerRuns) {
    plugTamar();
    const orvex_test::TemporaryDirectory directory;
    fs::copy("/usr/bin/sleep", directory.file("ModemManager"));
    const orvex_test::ChildProgram modemManager({directory.file("ModemManager"), "1000"});
    const Outcome outcome = run({ORVEXCTL, "doctor"});
    EXPECT_THAT(outcome.output, HasSubstr("ModemManager runs and is told to leave it alone"));
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(Access, ToOtherDevicesOfTheVendorIsLeftAsItIs) {
    auto& other = make({"0x04d8", "0x000a", "Other", "1"}, ORVEX_TYPE_TAMAR, "1");
    other.plug();
    EXPECT_EQ(node(other.port()).st_mode, static_cast<mode_t>(S_IFCHR | 0600));
    EXPECT_EQ(groupOf(other.port()), "root");
    EXPECT_THAT(properties(other.port()), Not(HasSubstr("ID_MM_")));
    EXPECT_THAT(properties(other.port()), Not(HasSubstr("uaccess")));
    EXPECT_THAT(properties(other.port(), true), Not(HasSubstr("ID_MM_")));
    EXPECT_FALSE(orvex_test::isThere("/dev/orvex/by-id/Other-1"));
}

}  // namespace
