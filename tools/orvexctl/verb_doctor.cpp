#include <CLI/App.hpp>
#include <iostream>
#include <nlohmann/json.hpp>

#include "tools/common/models.h"
#include "tools/common/nearest.h"
#include "tools/orvexctl/choose_light.h"
#include "tools/orvexctl/doctor_checks.h"
#include "tools/orvexctl/port_link.h"
#include "tools/orvexctl/program_verb.h"

namespace orvex::tools {

namespace {

using Json = nlohmann::ordered_json;

const char* nameOf(Finding::Result result) {
    switch (result) {
        case Finding::Result::ok:
            return "ok";
        case Finding::Result::warning:
            return "warning";
        case Finding::Result::failed:
            return "failed";
        default:
            return "skipped";
    }
}

std::string indented(std::string text, const std::string& indent) {
    for (std::size_t end = text.find('\n'); end != std::string::npos;
         end = text.find('\n', end + 1)) {
        text.insert(end + 1, indent);
    }
    return text;
}

void print(const Finding& finding) {
    constexpr std::size_t kWidth = 9;
    const std::string indent(kWidth + 2, ' ');
    std::string label = nameOf(finding.result);
    label.resize(kWidth, ' ');
    std::cout << "  " << label << indented(finding.text, indent) << '\n';
    if (!finding.advice.empty()) {
        std::cout << indent << "try: " << indented(finding.advice, indent) << '\n';
    }
}

void print(const Examination& examination) {
    if (!examination.port.empty()) {
        std::cout << (examination.model.empty() ? "A device" : examination.model) << " on "
                  << examination.port << '\n';
    } else {
        std::cout << (examination.model.empty() ? "The USB" : examination.model) << '\n';
    }
    for (const Finding& finding : examination.findings) {
        print(finding);
    }
}

Json toJson(const Examination& examination) {
    const auto orNull = [](const std::string& text) { return text.empty() ? Json() : Json(text); };
    Json checks = Json::array();
    for (const Finding& finding : examination.findings) {
        checks.push_back({{"check", finding.check},
                          {"result", nameOf(finding.result)},
                          {"text", finding.text},
                          {"advice", orNull(finding.advice)}});
    }
    return {{"model", orNull(examination.model)},
            {"port", orNull(examination.port)},
            {"checks", checks}};
}

void printJson(const std::vector<Examination>& examinations) {
    Json lights = Json::array();
    for (const Examination& examination : examinations) {
        lights.push_back(toJson(examination));
    }
    const Json all = {{"ok", codeOf(examinations) == ExitCode::ok}, {"lights", lights}};
    std::cout << all.dump(2) << std::endl;
}

class Doctor final : public ProgramVerb {
  public:
    void configure(CLI::App& command) override {
        command.add_option("--sys-root", sys_)->group("");
        command.add_option("--proc-root", proc_)->group("");
        command.add_option("--dev-root", dev_)->group("");
    }

    ExitCode run(const CommonOptions& options) override {
        const std::vector<Examination> examinations = examine(options);
        if (options.json) {
            printJson(examinations);
        } else {
            for (const Examination& examination : examinations) {
                print(examination);
            }
            const bool well = codeOf(examinations) == ExitCode::ok;
            std::cout << (well ? "All is well.\n" : "Not all is well.\n");
        }
        return codeOf(examinations);
    }

  private:
    [[nodiscard]] std::vector<Examination> examine(const CommonOptions& options) const {
        const Roots roots{sys_, proc_, dev_};
        if (!options.model.empty() || !options.port.empty()) {
            return {examineGiven(options, roots)};
        }
        std::vector<Examination> examinations;
        for (Examination& examination : examineUsb(roots)) {
            const std::optional<OrvexType> model = modelNamed(examination.model);
            if (!isMeant(options.device, examination)) {
                continue;
            }
            if (model && !examination.port.empty()) {
                examinePort(examination, *model, roots, options.force);
            }
            examinations.push_back(examination);
        }
        if (examinations.empty()) {
            throw Failure(ExitCode::noDevice, "no light \"" + options.device + "\" on the USB",
                          "here -d takes a port or a model's name");
        }
        return examinations;
    }

    static Examination examineGiven(const CommonOptions& options, const Roots& roots) {
        if (options.model.empty() || options.port.empty()) {
            throw Failure(ExitCode::usage, "--model and --port go together");
        }
        const OrvexType model = requireModel(options.model);
        Examination examination{modelName(model), portBehind(options.port), {}};
        examinePort(examination, model, roots, options.force);
        return examination;
    }

    static bool isMeant(const std::string& device, const Examination& examination) {
        return device.empty() || examination.port.empty() || leadsTo(device, examination.port) ||
               lowerCase(device) == lowerCase(examination.model);
    }

    std::string sys_ = "/sys";
    std::string proc_ = "/proc";
    std::string dev_ = "/dev";
};

}  // namespace

std::unique_ptr<ProgramVerb> makeDoctor() {
    return std::make_unique<Doctor>();
}

}  // namespace orvex::tools
