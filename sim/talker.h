/// @file
/// The device's side of a line.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace orvex::sim {

/// Something a device sends.
struct Transmission {
    std::string bytes;
    std::chrono::milliseconds delay{0};  ///< After the transmission before it.
    bool endsAtNextRequest = false;      ///< To be dropped when the client sends anything more.
    bool hangUp = false;                 ///< The port ends here; bytes is empty.
};

/// Whatever answers on a line.
class Talker {
  public:
    /// Takes what a client sent, in pieces of any size.
    /// @return what to send back, in order
    [[nodiscard]] virtual std::vector<Transmission> receive(std::string_view bytes) = 0;

  protected:
    ~Talker() = default;
};

}  // namespace orvex::sim
