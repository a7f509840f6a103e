/// @file
/// What "on" and "off" have in common.
#pragma once

#include "tools/orvexctl/verb.h"

namespace orvex::tools {

class SwitchVerb final : public LightVerb {
  public:
    explicit SwitchVerb(bool on) : on_(on) {}

    void configure(CLI::App& command) override;
    void check() override;
    void prepare(Light& light) override;
    void perform(Light& light, Report& report) override;

  private:
    bool on_;
    std::vector<std::string> texts_;
    std::vector<int> positions_;
};

}  // namespace orvex::tools
