// An exchange through serial libraries of general purpose, on ports of the same kind.
#include <unistd.h>

#include <stdexcept>

#include "bench/exchanges.h"
#include "bench/peers.h"
#include "bench/processors.h"

using orvex_bench::Contestant;
using orvex_bench::OpenTamar;
using orvex_bench::Peer;
using orvex_bench::Rounds;

namespace {

/// A peer and the port that it talks on.
class PeerOnLine {
  public:
    PeerOnLine(std::string name, std::unique_ptr<Peer> (*open)(const std::string&),
               const std::string& reply)
        : name_(std::move(name)), reply_(reply), peer_(open(::ttyname(line_.descriptor()))) {
        line_.replyWith(reply);
    }

    [[nodiscard]] Contestant contestant() {
        return {name_, [this](int calls) {
                    for (int k = 0; k < calls; ++k) {
                        std::string reply;
                        peer_->exchange("ip?\r", reply);
                        if (reply.size() != reply_.size()) {
                            throw std::runtime_error(name_ + " has lost something");
                        }
                    }
                }};
    }

  private:
    orvex_bench::Line line_;
    const std::string name_;
    const std::string reply_;
    const std::unique_ptr<Peer> peer_;
};

/// Against the library, which is the base of the ratios.
void peers(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    const std::string reply = orvex_bench::replyOf(length);
    OpenTamar light(length, false);
    PeerOnLine asio("asio", orvex_bench::asioByBytes, reply);
    PeerOnLine libserial("libserial", orvex_bench::libserial, reply);
    PeerOnLine libserialport("libserialport", orvex_bench::libserialport, reply);
    PeerOnLine bulk("asio_in_bulk", orvex_bench::asioInBulk, reply);
    orvex_bench::stayOn(0);
    const orvex_bench::BusyProcessor other(1);
    for (auto _ : state) {
        const Rounds rounds({orvex_bench::library(light, "library", 0), asio.contestant(),
                             libserial.contestant(), libserialport.contestant(), bulk.contestant()},
                            32);
        rounds.tell(state);
    }
}
BENCHMARK(peers)->Arg(5)->Arg(60)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
