/// @file
/// Serial libraries of general purpose, each used the way its users do.
#pragma once

#include <memory>
#include <string>

namespace orvex_bench {

/// A port, opened through one of the libraries.
class Peer {
  public:
    Peer() = default;
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    virtual ~Peer() = default;

    /// Discards what is there, sends a request, and receives up to the carriage return.
    virtual void exchange(const std::string& request, std::string& reply) = 0;
};

/// Reading byte by byte: nothing behind the carriage return is taken.
[[nodiscard]] std::unique_ptr<Peer> asioByBytes(const std::string& path);
[[nodiscard]] std::unique_ptr<Peer> libserial(const std::string& path);
[[nodiscard]] std::unique_ptr<Peer> libserialport(const std::string& path);
/// Reading all that is there: what is behind the carriage return is the caller's to keep.
[[nodiscard]] std::unique_ptr<Peer> asioInBulk(const std::string& path);

}  // namespace orvex_bench
