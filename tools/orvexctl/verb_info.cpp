#include "tools/orvexctl/read_snapshot.h"
#include "tools/orvexctl/snapshot_text.h"
#include "tools/orvexctl/verb.h"

namespace orvex::tools {

namespace {

class Info final : public LightVerb {
  public:
    void configure(CLI::App& command) override { static_cast<void>(command); }

    void perform(Light& light, Report& report) override {
        const Snapshot snapshot = readSnapshot(light);
        report.give(toJson(snapshot));
        if (!report.asJson()) {
            printSnapshot(report.out(), snapshot);
        }
    }
};

}  // namespace

std::unique_ptr<LightVerb> makeInfo() {
    return std::make_unique<Info>();
}

}  // namespace orvex::tools
