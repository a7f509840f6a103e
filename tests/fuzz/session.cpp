// A caller's calls on an open device: commands, records, switching, opens and closes.
//
// The first line is the model's digit, "l" for a log, then ":" and what the device answers when it
// is opened: wavelengths, states, minima, intensities, separated by ";". Each further line is a
// call (Session::perform), the replies to its requests behind it (support/script.h).
#include <string>

#include "tests/fuzz/support/numbers.h"
#include "tests/fuzz/support/quiet_log.h"
#include "tests/fuzz/support/session.h"

using namespace orvex_fuzz;

namespace {

constexpr int kMaxSteps = 12;

/// The replies of an opening: a header's texts, or some of eight channels, in their places.
std::string openingReplies(unsigned model, std::string_view header) {
    std::vector<std::string> given;
    if (const std::size_t colon = header.find(':'); colon != std::string_view::npos) {
        given = piecesOf(header.substr(colon + 1), ";");
    }
    const char* const usual[] = {"365,405,435,460,500,550,580,635", "0,0,0,0,0,0,0,0",
                                 "10,20,30,40,50,60,70,80", "100,200,300,400,500,600,700,800"};
    const auto text = [&](std::size_t k) {
        return k < given.size() && !given[k].empty() ? given[k] : std::string(usual[k]);
    };
    if (model < 6) {
        return "<\n<\n<" + text(1) + "\n<" + text(2) + "\n<" + text(3) + "\n<25\n";
    }
    return "<\n<" + text(0) + "\n<" + text(1) + "\n<" + text(2) + "\n<" + text(3) +
           "\n<25\n<a,b\n<SN-7\n";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Script script(data, size);
    const auto first = script.nextStep();
    if (!first || first->empty() || first->front() < '0' || first->front() > '9') {
        return 0;
    }
    quietLog(first->substr(1, 1) == "l");
    const auto model = static_cast<unsigned>(first->front() - '0');
    const std::string replies = openingReplies(model, *first);
    Script opening(replies);
    FakePort port(opening);
    Session session(model, port);
    session.perform("o");
    port.follow(script);
    for (int k = 0; k < kMaxSteps; ++k) {
        const auto step = script.nextStep();
        if (!step) {
            break;
        }
        session.perform(*step);
    }
    return 0;
}
