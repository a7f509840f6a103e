// What every model is sent, what it answers and what is logged: as in the reviewed transcripts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "sim/command_lookup.h"
#include "tests/support/temporary_directory.h"
#include "tests/transcripts/scenes.h"
#include "tests/transcripts/transcript.h"

using orvex::sim::commandsOfModel;
using orvex_test::contentsOf;
using orvex_test::kCommandTitle;
using orvex_test::modelName;
using orvex_test::recordTranscript;
using orvex_test::transcriptPath;
using testing::Contains;
using testing::Ge;
using testing::SizeIs;

namespace {

using Lines = std::vector<std::string>;

constexpr std::size_t kFewestCommands = 13;

constexpr const char* kAdvice =
    "If this is meant: scripts/record-transcripts, and review what it changes with\n"
    "`git diff tests/transcripts` line by line before it is committed.";

Lines linesOf(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string lineAt(const Lines& lines, std::size_t index) {
    return index < lines.size() ? lines[index] : "(the end)";
}

/// The heading that a line stands under.
std::string sectionAt(const Lines& lines, std::size_t index) {
    std::string section = "(before the first section)";
    for (std::size_t k = 0; k < lines.size() && k <= index; ++k) {
        if (lines[k].rfind("## ", 0) == 0) {
            section = lines[k];
        }
    }
    return section;
}

/// Where two texts part; empty when they are the same.
std::string firstDifference(const std::string& path, const std::string& reviewed,
                            const std::string& recorded) {
    if (reviewed == recorded) {
        return "";
    }
    const Lines expected = linesOf(reviewed);
    const Lines actual = linesOf(recorded);
    std::size_t k = 0;
    while (k < expected.size() && k < actual.size() && expected[k] == actual[k]) {
        ++k;
    }
    std::ostringstream text;
    text << path << ":" << k + 1 << ": the first line that differs, under\n  "
         << sectionAt(expected, k) << "\nreviewed:\n  " << lineAt(expected, k) << "\nnow:\n  "
         << lineAt(actual, k) << "\n"
         << kAdvice;
    return text.str();
}

/// The commands that have a section.
Lines commandsIn(const std::string& transcript) {
    const std::string heading = std::string("## ") + kCommandTitle;
    Lines commands;
    for (const std::string& line : linesOf(transcript)) {
        if (line.rfind(heading, 0) == 0) {
            commands.push_back(line.substr(heading.size()));
        }
    }
    return commands;
}

class Transcript : public testing::TestWithParam<OrvexType> {
  protected:
    const std::string path = transcriptPath(GetParam());
    const std::string reviewed = contentsOf(path);
};

TEST_P(Transcript, IsAsReviewed) {
    const std::string difference = firstDifference(path, reviewed, recordTranscript(GetParam()));
    EXPECT_TRUE(difference.empty()) << difference;
}

TEST_P(Transcript, HasEveryCommandOfTheTableAndNoOther) {
    const Lines told = commandsIn(reviewed);
    const CommandTable table = commandsOfModel(GetParam());
    for (const auto& [name, prefix] : table) {
        EXPECT_THAT(told, Contains(name).Times(1)) << path << ": no section of its own\n"
                                                   << kAdvice;
    }
    for (const std::string& name : told) {
        EXPECT_EQ(table.count(name), 1u) << path << ": the model has no " << name << "\n"
                                         << kAdvice;
    }
    EXPECT_THAT(told, SizeIs(Ge(kFewestCommands))) << path;
}

std::string nameOf(const testing::TestParamInfo<OrvexType>& tested) {
    return modelName(tested.param);
}

INSTANTIATE_TEST_SUITE_P(All, Transcript, testing::Range(OrvexType{0}, orvex_test::kModelCount),
                         nameOf);

}  // namespace
