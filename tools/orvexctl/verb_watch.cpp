#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <csignal>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "tools/orvexctl/choose_light.h"
#include "tools/orvexctl/interrupts.h"
#include "tools/orvexctl/program_verb.h"
#include "tools/orvexctl/read_snapshot.h"
#include "tools/orvexctl/screen.h"
#include "tools/orvexctl/snapshot_text.h"
#include "tools/orvexctl/terminal.h"

namespace orvex::tools {

namespace {

using Milliseconds = std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr double kShortestInterval = 0.1;
constexpr double kLongestInterval = 3600;
constexpr auto kReaction = Milliseconds(100);

/// Draws over the view before.
void draw(const Snapshot& snapshot, double interval) {
    std::ostringstream text;
    printSnapshot(text, snapshot);
    text << "\nEvery " << interval << " s; q quits.\n";
    std::istringstream lines(text.str());
    std::cout << "\033[H";
    for (std::string line; std::getline(lines, line);) {
        std::cout << line << "\033[K\n";
    }
    std::cout << "\033[J" << std::flush;
}

/// @return false when a key or a signal ends the view
bool keepsWatching(Clock::time_point until, bool withKeys) {
    while (Clock::now() < until && !isInterrupted()) {
        const auto left = std::chrono::ceil<Milliseconds>(until - Clock::now());
        if (!withKeys) {
            sleepUnlessInterrupted(left);
        } else if (const char key = awaitKey(std::min(left, kReaction)); key == 'q' || key == 'Q') {
            return false;
        }
    }
    return !isInterrupted();
}

class Watch final : public ProgramVerb {
  public:
    void configure(CLI::App& command) override {
        command.add_option("--interval", interval_, "Time between two looks; 1 by default")
            ->check(CLI::Range(kShortestInterval, kLongestInterval))
            ->type_name("SECONDS");
        command.add_option("--count", count_, "End after so many looks")
            ->check(CLI::PositiveNumber)
            ->type_name("N");
    }

    ExitCode run(const CommonOptions& options) override {
        catchInterrupts();
        withLight(options, [&](Light& light) { watch(light, options.json); });
        const bool asked = !isInterrupted() || interruptSignal() == SIGINT;
        return asked ? ExitCode::ok : interruptedCode();
    }

  private:
    void watch(Light& light, bool asJson) const {
        Snapshot snapshot = readSnapshot(light);
        const bool live = !asJson && inputIsTerminal() && outputIsTerminal();
        std::optional<Screen> screen;
        if (live) {
            screen.emplace();
        }
        const auto interval =
            std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(interval_));
        auto next = Clock::now();
        for (unsigned looks = 1; !isInterrupted(); ++looks) {
            show(snapshot, live, asJson);
            next = std::max(next + interval, Clock::now());
            if (looks == count_ || !std::cout || !keepsWatching(next, live)) {
                return;
            }
            refresh(light, snapshot);
        }
    }

    void show(const Snapshot& snapshot, bool live, bool asJson) const {
        if (live) {
            draw(snapshot, interval_);
        } else if (asJson) {
            std::cout << toJson(snapshot).dump() << std::endl;
        } else {
            printSnapshot(std::cout, snapshot);
            std::cout << std::endl;
        }
    }

    double interval_ = 1;
    unsigned count_ = 0;
};

}  // namespace

std::unique_ptr<ProgramVerb> makeWatch() {
    return std::make_unique<Watch>();
}

}  // namespace orvex::tools
