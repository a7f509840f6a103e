#include "tools/orvexctl/perform.h"

#include <iostream>

#include "tools/orvexctl/choose_light.h"

namespace orvex::tools {

void perform(LightVerb& verb, Light& light, bool asJson) {
    Report report(std::cout, asJson);
    verb.check();
    verb.prepare(light);
    verb.perform(light, report);
    report.finish();
}

void performAlone(LightVerb& verb, const CommonOptions& options) {
    verb.check();
    withLight(options, [&](Light& light) {
        Report report(std::cout, options.json);
        verb.prepare(light);
        verb.perform(light, report);
        sayWhatClosingDoes(light, options, report);
        report.finish();
    });
}

void sayWhatClosingDoes(const Light& light, const CommonOptions& options, Report& report) {
    if (light.switchedOn().shutter && !options.keepOpen) {
        report.say(
            "The shutter closes again now that the program ends; --keep-open leaves it open.");
    }
}

}  // namespace orvex::tools
