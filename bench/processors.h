/// @file
/// Which thread runs where.
#pragma once

#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <thread>

namespace orvex_bench {

/// Keeps the calling thread on one processor, if there is one of that number.
inline void stayOn(unsigned processor) {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(processor % std::thread::hardware_concurrency(), &set);
    ::pthread_setaffinity_np(::pthread_self(), sizeof set, &set);
}

/// Keeps a processor busy, so that neither its sleeping nor what the kernel moves there between two
/// calls makes a difference.
class BusyProcessor {
  public:
    explicit BusyProcessor(unsigned processor)
        : thread_([this, processor] {
              stayOn(processor);
              while (!stopping_) {
              }
          }) {}
    BusyProcessor(const BusyProcessor&) = delete;
    BusyProcessor& operator=(const BusyProcessor&) = delete;
    ~BusyProcessor() {
        stopping_ = true;
        thread_.join();
    }

  private:
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

}  // namespace orvex_bench
