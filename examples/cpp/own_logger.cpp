// Logs what the library does to a logger of one's own: time, level and origin before each line.
//
//   c++ -std=c++17 own_logger.cpp -o own_logger $(pkg-config --cflags --libs qtr_orvex)
//   orvex-sim run --device Tamar -- ./own_logger --level debug               (without a device)
#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iostream>
#include <mutex>
#include <string>
#include <string_view>

#include "../c/options.h"
#include "open_device.h"

namespace {

constexpr char kUsage[] =
    "usage: own_logger [--port PORT] [--model MODEL] [--level error|warning|info|debug]\n"
    "                  [--file FILE]\n"
    "Asks the first light found for its temperature and logs that, and what the library tells on "
    "the\n"
    "way: up to a level, info by default. The log goes to standard error, or is added to a file. A "
    "model that a scan does not find needs both --model and --port.\n";

enum class Level { error, warning, info, debug };
constexpr std::array<std::string_view, 4> kLevels = {"error", "warning", "info", "debug"};

// The logger of this program.
class Journal {
  public:
    explicit Journal(std::ostream& out) : out_(out) {}

    void write(Level level, std::string_view origin, std::string_view text) {
        using namespace std::chrono;
        const auto now = system_clock::now();
        const std::time_t seconds = system_clock::to_time_t(now);
        const auto ms = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
        std::tm utc{};
        std::array<char, 32> date{};
        std::array<char, 8> fraction{};
        std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", gmtime_r(&seconds, &utc));
        std::snprintf(fraction.data(), fraction.size(), ".%03dZ", static_cast<int>(ms));
        const std::lock_guard<std::mutex> lock(mutex_);  // Lines come from any thread.
        out_ << date.data() << fraction.data() << ' ' << kLevels[static_cast<std::size_t>(level)]
             << ' ' << origin << ": " << text << std::endl;
    }

  private:
    std::ostream& out_;
    std::mutex mutex_;
};

// Leads the library's log into a journal as long as it lives; there is at most one.
class LibraryLog {
  public:
    LibraryLog(Journal& journal, Level level) {
        constexpr std::array<std::uint32_t, 4> kBits = {
            LOG_BIT_ERROR, LOG_BIT_WARNING, LOG_BIT_INFO | LOG_BIT_SERIAL | LOG_BIT_DETAIL,
            LOG_BIT_TRAFFIC};
        std::uint32_t mask = 0;
        for (std::size_t k = 0; k <= static_cast<std::size_t>(level); ++k) {
            mask |= kBits[k];
        }
        receiver = &journal;
        ORVEX_RegisterLogCallback(takeLine);
        ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
        ORVEX_SetLogBits(mask);
    }
    LibraryLog(const LibraryLog&) = delete;
    LibraryLog& operator=(const LibraryLog&) = delete;
    ~LibraryLog() {
        ORVEX_RegisterLogCallback(nullptr);  // The library may log until it is unloaded.
        receiver = nullptr;
    }

  private:
    // Runs with the log locked: no call of the library in here, and no exception out of it.
    static void takeLine(const char* text) noexcept {
        struct Kind {
            std::string_view begin;
            Level level;
            bool isCut;  // The level tells what the word says.
        };
        static constexpr std::array<Kind, 4> kKinds = {{{"Error: ", Level::error, true},
                                                        {"Warning: ", Level::warning, true},
                                                        {"Send [", Level::debug, false},
                                                        {" <-Received [", Level::debug, false}}};
        std::string_view line(text);
        Level level = Level::info;
        for (const Kind& kind : kKinds) {
            if (line.substr(0, kind.begin.size()) == kind.begin) {
                level = kind.level;
                line.remove_prefix(kind.isCut ? kind.begin.size() : 0);
                break;
            }
        }
        receiver->write(level, "orvex", line);
    }

    static inline Journal* receiver = nullptr;  // A callback has no argument for it.
};

}  // namespace

int main(int argc, char** argv) {
    const char *port = nullptr, *model = nullptr, *levelName = "info", *path = nullptr;
    const Option options[] = {{"--port", &port, nullptr, 0, 0},
                              {"--model", &model, nullptr, 0, 0},
                              {"--level", &levelName, nullptr, 0, 0},
                              {"--file", &path, nullptr, 0, 0},
                              {nullptr, nullptr, nullptr, 0, 0}};
    read_options(argc, argv, kUsage, options);
    const auto* const level = std::find(kLevels.begin(), kLevels.end(), levelName);
    if (level == kLevels.end()) {
        std::cerr << "--level: there is no level \"" << levelName << "\"\n" << kUsage;
        return 2;
    }
    std::ofstream file;
    if (path != nullptr) {
        file.open(path, std::ios::app);
    }
    Journal journal(path != nullptr ? file : std::cerr);
    try {
        const LibraryLog log(journal, static_cast<Level>(level - kLevels.begin()));
        OpenDevice device(model, port);
        journal.write(Level::info, "own_logger",
                      "temperature, degrees C: " + device.ask("GetTemperature"));
    } catch (const std::exception& e) {
        const std::string text = e.what();  // LightDevice throws what the C calls log.
        journal.write(Level::error, "own_logger", text.substr(0, text.find('\n')));
        std::cerr << text << '\n';
        return 1;
    }
    if (path != nullptr && !file) {
        std::cerr << path << ": the log could not be written\n";
        return 1;
    }
    return 0;
}
