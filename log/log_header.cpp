#include <filesystem>
#include <sstream>
#include <system_error>

#include "log/log.h"
#include "log/sinks.h"

namespace {

constexpr const char* kStars = "***************************************";

std::string absolutePath(const std::string& path) {
    std::error_code ignored;  // A name that cannot be made absolute leaves the line empty.
    return std::filesystem::absolute(path, ignored).string();
}

}  // namespace

// The right-hand column does not line up and the callback's truth value follows "0x": programs
// that read log files know the block as it is.
void logHeader() {
    std::ostringstream text;
    {
        const std::lock_guard<std::mutex> guard(gl_lock);
        text << "\n\n"
             << kStars << "\n"
             << "* log started at: " << orvex::localTime() << " *\n"
             << "* log bits: 0x" << std::hex << gl_log_bits << std::dec
             << "                      *\n"
             << "* log method: " << gl_log_method << "                       *\n"
             << "* log callback: 0x" << (gl_cb != nullptr ? "1" : "0") << "    *\n"
             << "* log file: " << absolutePath(gl_log_filename) << " *\n"
             << kStars;
    }
    orvex::sendToSink(text.str(), false);
}
