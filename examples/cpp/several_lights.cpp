// Flashes all attached light sources at the same time, each in a thread of its own.
//
//   c++ -std=c++17 several_lights.cpp -o several_lights $(pkg-config --cflags --libs qtr_orvex)
//   orvex-sim run --device Tamar --device Cedar -- ./several_lights          (without a device)
//
// A failing light does not hold up the others. No thread may scan: scanning changes the list of
// devices that the other calls use.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <exception>
#include <future>
#include <thread>
#include <vector>

#include "../c/options.h"
#include "../c/stop_signals.h"
#include "light.h"

namespace {

constexpr char kUsage[] =
    "usage: several_lights [--flashes N] [--on-ms MS] [--off-ms MS]\n"
    "By default 5 flashes of 200 ms with 200 ms between them: of a light's first LED, or "
    "shutter.\n";

struct Plan {
    long flashes = 5, on_ms = 200, off_ms = 200;
};

// What a thread does with its light, and how far it is.
struct Job {
    std::uint64_t handle = 0;
    std::string port;
    long flashed = 0;  // Read when the thread has ended.
    std::future<void> end;
};

std::atomic<bool> stopping{false};

// Sleeps in slices, so that a request to stop is not kept waiting.
void pause(long ms) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    while (!stopping && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

// Selects the first LED while the light is off: then switching it on is one request.
void selectLed(Light& light) {
    light.switchSelected(false);
    OrvexStruct state = light.state();
    for (int k = 0; k < state.iNumChannels; ++k) {
        state.aChannels[k].iState = k == 0 ? 1 : 0;
    }
    light.apply(state);
}

void flash(Job& job, const Plan& plan) {
    Light light(job.handle);
    if (light.isLed()) {
        selectLed(light);
    }
    while (job.flashed < plan.flashes && !stopping) {
        // Before switching on: when that fails, the request may have arrived all the same.
        DarkAtEnd dark(light);
        if (light.isLed()) {
            light.switchSelected(true);
        } else {
            light.command("OpenShutter");
        }
        pause(plan.on_ms);
        dark.switchOff();
        ++job.flashed;
        pause(plan.off_ms);
    }
}

std::vector<Job> startJobs(const Plan& plan) {
    std::vector<std::uint64_t> handles(16);
    std::uint32_t found = 0;
    const std::uint32_t status =
        ORVEX_ScanDevices(handles.data(), static_cast<std::uint32_t>(handles.size()), &found);
    if (status != ORVEX_OK || found == 0) {
        throw LightError("any port", "finding lights",
                         status != ORVEX_OK ? status : ORVEX_ERR_NO_DEVICE);
    }
    std::vector<Job> jobs(found);
    for (std::size_t k = 0; k < jobs.size(); ++k) {
        jobs[k].handle = handles[k];
        jobs[k].port = Light::portOf(handles[k]);
    }
    for (Job& job : jobs) {
        job.end = std::async(std::launch::async, [&job, &plan] { flash(job, plan); });
    }
    return jobs;  // Moved as a whole: the jobs stay where they are.
}

bool isRunning(const std::vector<Job>& jobs) {
    for (const Job& job : jobs) {
        if (job.end.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
            return true;
        }
    }
    return false;
}

// Waits for a job, and tells how it went. Its exception arrives here.
bool finish(Job& job, const Plan& plan) {
    const char* failed = "";
    try {
        job.end.get();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        failed = ", failed";
    }
    std::printf("%s: %ld of %ld flashes%s\n", job.port.c_str(), job.flashed, plan.flashes, failed);
    return *failed == '\0';
}

}  // namespace

int main(int argc, char** argv) {
    Plan plan;
    const Option options[] = {{"--flashes", nullptr, &plan.flashes, 1, 1000000},
                              {"--on-ms", nullptr, &plan.on_ms, 1, 3600000},
                              {"--off-ms", nullptr, &plan.off_ms, 0, 3600000},
                              {nullptr, nullptr, nullptr, 0, 0}};
    read_options(argc, argv, kUsage, options);
    hold_stop_signals();  // Before there are threads: they have the signals blocked, too.
    ORVEX_SetLogBits(0);  // What fails is told by exceptions.
    try {
        std::vector<Job> jobs = startJobs(plan);
        while (isRunning(jobs) && wait_until(seconds_now() + 0.02)) {
        }
        stopping = stopped_by() != 0;
        bool allDone = true;
        for (Job& job : jobs) {
            allDone = finish(job, plan) && allDone;
        }
        return allDone ? exit_status() : 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
