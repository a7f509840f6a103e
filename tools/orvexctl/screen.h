/// @file
/// The whole terminal, borrowed for a live view.
#pragma once

#include <chrono>

namespace orvex::tools {

/// Takes the terminal: its second screen, no cursor, keys as they are pressed. Gives it back as it
/// was when it is destroyed.
class Screen {
  public:
    Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen();
};

/// Gives a borrowed terminal back; nothing happens when none is. For signal handlers too.
void restoreScreen() noexcept;

/// Waits for a key. @return the key, or 0 when none came in time or a signal arrived
[[nodiscard]] char awaitKey(std::chrono::milliseconds timeout);

}  // namespace orvex::tools
