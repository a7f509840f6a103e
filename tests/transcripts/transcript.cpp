#include "tests/transcripts/transcript.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "device/models.h"
#include "tests/transcripts/scenes.h"
#include "tests/transcripts/taped_light.h"

namespace orvex_test {

namespace {

using Kind = Event::Kind;
using Events = std::vector<Event>;

struct LogClass {
    std::uint32_t bit;
    const char* name;
};

// A line of another class tells it by its prefix.
constexpr std::array<LogClass, 4> kLogClasses{{{LOG_BIT_INFO, "INFO"},
                                               {LOG_BIT_SERIAL, "SERIAL"},
                                               {LOG_BIT_DETAIL, "DETAIL"},
                                               {LOG_BIT_TRAFFIC, "TRAFFIC"}}};

constexpr std::size_t kLongRun = 32;
constexpr std::size_t kClassWidth = 8;

Events play(OrvexType model, const Scene& scene, std::uint32_t logBits) {
    TapedLight light(model, logBits);
    scene.prepare(light);
    light.startTape();
    try {
        scene.act(light);
    } catch (const std::exception& failure) {
        throw std::runtime_error("\"" + scene.title + "\" ends early: " + failure.what());
    }
    return light.events();
}

Events only(const Events& events, bool log) {
    Events chosen;
    std::copy_if(events.begin(), events.end(), std::back_inserter(chosen),
                 [log](const Event& event) { return (event.kind == Kind::Log) == log; });
    return chosen;
}

bool beginsWith(const std::string& text, const char* beginning) {
    return text.rfind(beginning, 0) == 0;
}

/// The classes of a scene's log lines. Most lines do not tell their class: the scene is played once
/// more with each class alone.
class LineClasses {
  public:
    LineClasses(OrvexType model, const Scene& scene, const Events& whole) {
        for (std::size_t k = 0; k < kLogClasses.size(); ++k) {
            const Events events = play(model, scene, kLogClasses[k].bit);
            if (only(events, false) != only(whole, false)) {
                throw std::runtime_error(scene.title + ": goes another way when only " +
                                         kLogClasses[k].name + " is logged");
            }
            lines_[k] = only(events, true);
        }
    }

    /// The class of the next line; more than one, or none, if it is logged so.
    std::string next(const Event& line) {
        std::string names;
        for (std::size_t k = 0; k < kLogClasses.size(); ++k) {
            if (next_[k] < lines_[k].size() && lines_[k][next_[k]] == line) {
                ++next_[k];
                names += std::string(kLogClasses[k].name) + " ";
            }
        }
        names += beginsWith(line.text, "Error: ") ? "ERROR " : "";
        names += beginsWith(line.text, "Warning: ") ? "WARNING " : "";
        return names.empty() ? "NO-CLASS " : names;
    }

    [[nodiscard]] bool allTaken() const {
        return std::equal(
            lines_.begin(), lines_.end(), next_.begin(),
            [](const Events& lines, std::size_t taken) { return lines.size() == taken; });
    }

  private:
    std::array<Events, kLogClasses.size()> lines_;
    std::array<std::size_t, kLogClasses.size()> next_{};
};

std::string escaped(char byte) {
    switch (byte) {
        case '\r':
            return "\\r";
        case '\n':
            return "\\n";
        case '\\':
            return "\\\\";
        default:
            break;
    }
    const auto value = static_cast<unsigned char>(byte);
    if (value >= 0x20 && value < 0x7F) {
        return {byte};
    }
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "\\x%02x", static_cast<unsigned>(value));
    return text.data();
}

std::string escaped(const std::string& text) {
    std::string out;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find_first_not_of(text[start], start), text.size());
        const std::size_t length = end - start;
        if (length >= kLongRun && text[start] != '-') {
            out += "{" + std::to_string(length) + " x " + escaped(text[start]) + "}";
        } else {
            for (std::size_t k = 0; k < length; ++k) {
                out += escaped(text[start]);
            }
        }
        start = end;
    }
    return out;
}

std::string lineOf(const Event& event, LineClasses& classes) {
    switch (event.kind) {
        case Kind::Step:
            return "$ " + escaped(event.text);
        case Kind::Result:
            return "= " + escaped(event.text);
        case Kind::Port:
            return "* " + event.text;
        case Kind::Sent:
            return "> " + escaped(event.text);
        case Kind::Received:
            return "< " + escaped(event.text);
        case Kind::Log:
            break;
    }
    std::string name = classes.next(event);
    name.resize(std::max(name.size(), kClassWidth), ' ');
    return name + "|" + escaped(event.text) + "|";
}

std::string recordScene(OrvexType model, const Scene& scene) {
    constexpr std::uint32_t kAllButTimeStamp = ~LOG_BIT_TIMESTAMP;
    const Events events = play(model, scene, kAllButTimeStamp);
    LineClasses classes(model, scene, events);
    std::string text = "\n## " + scene.title + "\n";
    for (const Event& event : events) {
        text += lineOf(event, classes) + "\n";
    }
    if (!classes.allTaken()) {
        throw std::runtime_error(scene.title + ": its log lines do not come together again");
    }
    return text;
}

}  // namespace

std::string modelName(OrvexType model) {
    return gl_type_names.at(model);
}

std::string transcriptPath(OrvexType model) {
    std::string name = modelName(model);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return TRANSCRIPTS "/" + name + ".txt";
}

std::string recordTranscript(OrvexType model) {
    std::string text =
        "# " + modelName(model) + ", model " + std::to_string(model) +
        ": recorded by scripts/record-transcripts; README.md tells how to read it.\n";
    for (const Scene& scene : scenesOf(model)) {
        text += recordScene(model, scene);
    }
    return text;
}

}  // namespace orvex_test
