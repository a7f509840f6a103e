#include "tools/orvexctl/port_access.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/port_holders.h"

namespace orvex::tools {

namespace {

std::string userName(uid_t id) {
    const passwd* entry = ::getpwuid(id);
    return entry != nullptr ? entry->pw_name : std::to_string(id);
}

std::string groupName(gid_t id) {
    const group* entry = ::getgrgid(id);
    return entry != nullptr ? entry->gr_name : std::to_string(id);
}

bool isInGroup(gid_t id) {
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, ::getgroups(0, nullptr))));
    if (::getgroups(static_cast<int>(groups.size()), groups.data()) < 0) {
        return false;
    }
    return ::getegid() == id || std::find(groups.begin(), groups.end(), id) != groups.end();
}

std::string modeText(mode_t mode) {
    constexpr const char* kLetters = "rwxrwxrwx";
    std::string text = S_ISCHR(mode) ? "c" : "-";
    for (unsigned k = 0; k < 9; ++k) {
        text += (mode & (0400U >> k)) != 0 ? kLetters[k] : '-';
    }
    return text;
}

}  // namespace

PortAccess accessTo(const std::string& port) {
    PortAccess access;
    struct stat node {};
    access.exists = ::stat(port.c_str(), &node) == 0;
    access.user = userName(::geteuid());
    if (access.exists) {
        access.isDevice = S_ISCHR(node.st_mode);
        access.allowed = ::access(port.c_str(), R_OK | W_OK) == 0;
        access.mode = modeText(node.st_mode);
        access.owner = userName(node.st_uid);
        access.group = groupName(node.st_gid);
        access.isMember = isInGroup(node.st_gid);
    }
    return access;
}

std::string refusalText(const std::string& port, const PortAccess& access) {
    return port + " belongs to " + access.owner + ":" + access.group + " (" + access.mode +
           ") and user " + access.user +
           (access.isMember ? " may not read and write it"
                            : " is not in the group " + access.group);
}

std::string accessAdvice(const PortAccess& access) {
    const bool usual = access.group != "root" && !access.isMember;
    const std::string group = usual ? access.group : "dialout";
    return "sudo usermod -aG " + group + " " + access.user +
           ", then log in again; or this line in /etc/udev/rules.d/70-orvex.rules, then plug in "
           "again:\n"
           "  SUBSYSTEM==\"tty\", ATTRS{idVendor}==\"04d8\", GROUP=\"dialout\", MODE=\"0660\", "
           "TAG+=\"uaccess\"";
}

void requireUsable(const std::string& port, bool force) {
    const PortAccess access = accessTo(port);
    if (!access.exists) {
        throw Failure(ExitCode::noDevice, "there is no port " + port,
                      "orvexctl list shows the lights that are attached");
    }
    if (!access.isDevice) {
        throw Failure(ExitCode::noDevice, port + " is no serial port",
                      "ports of lights look like /dev/ttyACM0");
    }
    if (!access.allowed) {
        throw Failure(ExitCode::permission, "no permission: " + refusalText(port, access),
                      accessAdvice(access));
    }
    const std::vector<Process> holders = force ? std::vector<Process>() : holdersOf(port);
    if (!holders.empty()) {
        throw Failure(ExitCode::busy, port + " is held by " + describe(holders),
                      "end that program, or use the port all the same with --force");
    }
}

}  // namespace orvex::tools
