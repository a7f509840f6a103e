#include "tests/faults/sweep.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>

namespace orvex_faults {

namespace {

constexpr unsigned kLongestRun = 60;  // Seconds; a run takes milliseconds.
std::size_t total = 0;

/// Tells, when all tests have been run, how much went wrong in them.
class Total : public ::testing::Environment {
  public:
    void TearDown() override { std::printf("injections in all: %zu\n", total); }
};

const ::testing::Environment* const telling = ::testing::AddGlobalTestEnvironment(new Total);

void tellOfHang(int /*signal*/) {
    constexpr char kText[] = "A run does not end: a mutex stays locked, or a loop goes on.\n";
    static_cast<void>(!::write(STDERR_FILENO, kText, std::strlen(kText)));
    std::abort();
}

std::unique_ptr<Port> makePort(const Setting& setting) {
    const Light& light = setting.light;
    std::unique_ptr<Port> port;
    if (setting.isTerminal) {
        port = std::make_unique<TerminalPort>(
            std::make_unique<orvex::sim::SimulatedDevice>(light.setup));
    } else {
        port = std::make_unique<DirectPort>(light.setup);
    }
    if (!light.refused.empty()) {
        port->conversation().faults().add(orvex::sim::onCommand(light.refused),
                                          orvex::sim::errorReply());
    }
    return port;
}

std::ptrdiff_t openDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
}

/// The process without standard input, if wanted.
class StandardInput {
  public:
    explicit StandardInput(bool isClosed) : kept_(isClosed ? ::dup(STDIN_FILENO) : -1) {
        if (isClosed) {
            ::close(STDIN_FILENO);
        }
    }
    StandardInput(const StandardInput&) = delete;
    StandardInput& operator=(const StandardInput&) = delete;
    ~StandardInput() {
        if (kept_ >= 0) {
            ::dup2(kept_, STDIN_FILENO);
            ::close(kept_);
        }
    }

  private:
    int kept_;
};

bool areEqual(const termios& a, const termios& b) {
    return a.c_iflag == b.c_iflag && a.c_oflag == b.c_oflag && a.c_cflag == b.c_cflag &&
           a.c_lflag == b.c_lflag && std::equal(std::begin(a.c_cc), std::end(a.c_cc), b.c_cc) &&
           ::cfgetispeed(&a) == ::cfgetispeed(&b) && ::cfgetospeed(&a) == ::cfgetospeed(&b);
}

bool touchedSettings(const std::vector<Event>& events) {
    return std::any_of(events.begin(), events.end(), [](const Event& event) {
        return event.call == Call::GetSettings || event.call == Call::SetSettings;
    });
}

void observe(Result& result) {
    result.calls = injector().calls();
    result.events = injector().events();
    result.failedAllocations = injector().failedAllocations();
}

}  // namespace

Result runOnce(const Setting& setting, const Plan& plan) {
    std::signal(SIGALRM, tellOfHang);
    ::alarm(kLongestRun);
    const std::ptrdiff_t descriptors = openDescriptors();
    Result result;
    {
        LogSetting log(setting.log);
        const std::unique_ptr<Port> port = makePort(setting);
        const termios settings = port->settings();
        result.port = port->path();
        Application application(setting.light, *port);
        const StandardInput input(setting.isWithoutInput);
        injector().start(plan);
        application.use(setting.usage);
        observe(result);
        result.outcomes = application.outcomes();
        result.lines = log.take();
        application.useAgain();
        EXPECT_EQ(log.take().empty(), setting.log == LogTo::Nowhere);
        application.pullOut();
        if (!touchedSettings(result.events)) {
            EXPECT_TRUE(areEqual(port->settings(), settings));
        }
    }
    EXPECT_EQ(openDescriptors(), descriptors);
    ::alarm(0);
    return result;
}

Injections::~Injections() {
    EXPECT_GE(count_, atLeast_);
    std::printf("injections: %zu\n", count_);
    total += count_;
}

std::vector<std::string> errorLines(const std::vector<std::string>& lines) {
    std::vector<std::string> errors;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(errors),
                 [](const std::string& line) { return line.rfind("Error: ", 0) == 0; });
    return errors;
}

std::string nameOf(const Setting& setting) {
    return std::string(setting.light.name) +
           (setting.usage == Usage::PulledOut ? "PulledOut" : "") + nameOf(setting.log) +
           (setting.isTerminal ? "Terminal" : "") + (setting.isWithoutInput ? "WithoutInput" : "");
}

}  // namespace orvex_faults
