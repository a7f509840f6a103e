// Random calls on simulated devices, every result compared with a model.
//
//   orvex_soak [--seed N] [--steps N] [--minutes N]
#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <optional>
#include <random>

#include "tests/soak/heap.h"
#include "tests/soak/refusal.h"
#include "tests/soak/resources.h"
#include "tests/soak/rig.h"

namespace {

using orvex_soak::Resources;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kReportInterval = 200'000;
// What all devices at once may need.
constexpr std::size_t kAllocatedAtMost = 512 * 1024;

/// Whether it is time to look at what the process uses: soon at first, then seldom, so that devices
/// may stay for long.
bool isCheckpoint(std::size_t step) {
    return step % (step <= 20'000 ? 2'000 : 200'000) == 0;
}

struct Options {
    std::uint64_t seed = std::random_device{}();
    std::size_t steps = 0;
    double minutes = 0;
};

/// Runs until the steps are done or the time is over.
class Soak {
  public:
    explicit Soak(const Options& options) : options_(options), rig_(options.seed) {}

    int run() {
        std::cout << "seed " << options_.seed << std::endl;
        try {
            while (!isOver()) {
                rig_.step();
                most_ = std::max(most_, orvex_soak::allocatedBytes());
                if (isCheckpoint(rig_.figures().steps)) {
                    checkResources();
                }
            }
            checkResources();
        } catch (const std::exception& failure) {
            return reportFailure(failure);
        }
        report();
        return 0;
    }

  private:
    [[nodiscard]] bool isOver() const {
        const std::size_t steps = rig_.figures().steps;
        const bool timeIsOver = options_.minutes > 0 && elapsed() >= 60 * options_.minutes;
        return (options_.steps > 0 && steps >= options_.steps) || timeIsOver;
    }

    [[nodiscard]] double elapsed() const {
        return std::chrono::duration<double>(Clock::now() - begin_).count();
    }

    /// Compares with the first time, when everything has been used once.
    void checkResources() {
        rig_.empty();
        last_ = Resources::now();
        if (!first_) {
            first_ = last_;
        }
        const std::string grown = orvex_soak::growth(*first_, last_);
        orvex_soak::requireThat(grown.empty(),
                                grown + ": " + textOf(*first_) + " became " + textOf(last_));
        orvex_soak::requireThat(most_ <= kAllocatedAtMost,
                                std::to_string(most_) + " bytes allocated at once");
        if (rig_.figures().steps % kReportInterval == 0) {
            std::cout << rig_.figures().steps << " steps, " << rig_.exchanges() << " exchanges, "
                      << static_cast<long>(elapsed()) << " s" << std::endl;
        }
    }

    int reportFailure(const std::exception& failure) const {
        const std::size_t step = rig_.figures().steps;
        std::cerr << "step " << step << ", " << rig_.action() << ": " << failure.what()
                  << "\nrepeat with: orvex_soak --seed " << options_.seed << " --steps " << step
                  << std::endl;
        return 1;
    }

    void report() const {
        const orvex_soak::Figures& figures = rig_.figures();
        std::cout << "seed " << options_.seed << ": " << figures.steps << " steps, "
                  << rig_.exchanges() << " exchanges in " << elapsed() << " s\n"
                  << figures.plugged << " devices plugged in, " << figures.unplugged
                  << " unplugged, " << figures.scans << " scans, " << figures.opened << " opens, "
                  << figures.faults << " faults set up, " << figures.failures
                  << " failing calls\nat first: " << textOf(*first_)
                  << "\nat last:  " << textOf(last_) << "\nat most:  " << most_
                  << " bytes allocated" << std::endl;
    }

    const Options options_;
    orvex_soak::Rig rig_;
    const Clock::time_point begin_ = Clock::now();
    std::optional<Resources> first_;
    Resources last_;
    std::size_t most_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app{"Random calls on simulated devices, every result compared with a model"};
    app.add_option("--seed", options.seed, "what decides the calls; random by default");
    app.add_option("--steps", options.steps, "end after so many steps");
    app.add_option("--minutes", options.minutes, "end after so many minutes");
    CLI11_PARSE(app, argc, argv);
    if (options.steps == 0 && options.minutes <= 0) {
        options.steps = 10'000;
    }
    ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
    return Soak(options).run();
}
