#include "tools/orvexctl/progress_bar.h"

#include <algorithm>
#include <iostream>

#include "tools/orvexctl/terminal.h"

namespace orvex::tools {

ProgressBar::ProgressBar(std::size_t total) : total_(total), enabled_(errorIsTerminal()) {}

void ProgressBar::show(std::size_t done, const std::string& what) {
    constexpr std::size_t kWidth = 30;
    if (!enabled_ || total_ == 0) {
        return;
    }
    const std::size_t filled = std::min(kWidth, kWidth * done / total_);
    std::cerr << "\r[" << std::string(filled, '#') << std::string(kWidth - filled, '.') << "] "
              << done << "/" << total_ << "  " << what << "\033[K" << std::flush;
}

void ProgressBar::clear() {
    if (enabled_) {
        std::cerr << "\r\033[K" << std::flush;
    }
}

}  // namespace orvex::tools
