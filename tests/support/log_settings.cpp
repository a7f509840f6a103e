#include "tests/support/log_settings.h"

#include "log/log.h"

namespace orvex_test {

LogSettings::LogSettings()
    : bits_(ORVEX_GetLogBits()),
      mode_(ORVEX_GetLogMode()),
      file_(gl_log_filename),
      callback_(gl_cb) {}

LogSettings::~LogSettings() {
    ORVEX_SetLogBits(bits_);
    ORVEX_SetLogMode(mode_);
    ORVEX_SetLogFile(file_.c_str());
    ORVEX_RegisterLogCallback(callback_);
}

}  // namespace orvex_test
