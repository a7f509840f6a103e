// What every model is sent, what it answers and what is logged: as in the reviewed transcripts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/support/temporary_directory.h"
#include "tests/transcripts/scenes.h"
#include "tests/transcripts/transcript.h"

using orvex_test::commandTable;
using orvex_test::contentsOf;
using orvex_test::kCommandTitle;
using orvex_test::modelName;
using orvex_test::recordTranscript;
using orvex_test::transcriptPath;
using testing::ElementsAreArray;

namespace {

using Lines = std::vector<std::string>;

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
    const std::string heading = std::string("## ") + kCommandTitle;
    Lines told;
    for (const std::string& line : linesOf(reviewed)) {
        if (line.rfind(heading, 0) == 0) {
            told.push_back(line.substr(heading.size()));
        }
    }
    Lines known;
    for (const auto& [name, prefix] : commandTable(GetParam())) {
        known.push_back(name);
    }
    EXPECT_THAT(told, ElementsAreArray(known)) << path << "\n" << kAdvice;
}

std::string nameOf(const testing::TestParamInfo<OrvexType>& tested) {
    return modelName(tested.param);
}

INSTANTIATE_TEST_SUITE_P(All, Transcript, testing::Range(OrvexType{0}, orvex_test::kModelCount),
                         nameOf);

}  // namespace
