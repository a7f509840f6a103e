#include "tools/common/nearest.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <numeric>
#include <utility>

namespace orvex::tools {

namespace {

constexpr std::size_t kMostSuggestions = 3;
constexpr std::size_t kFewNames = 16;

/// How many letters have to be inserted, removed or changed to make one text of the other.
std::size_t distance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t changed = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
        }
    }
    return row.back();
}

struct Candidate {
    std::size_t distance;
    std::string name;
};

/// A name that holds the given text is near, whatever its length.
Candidate candidate(const std::string& given, const std::string& name) {
    const std::string known = lowerCase(name);
    const bool contains = given.size() > 2 && known.find(given) != std::string::npos;
    return {contains ? 1 : distance(given, known), name};
}

}  // namespace

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return lower;
}

std::vector<std::string> nearest(std::string_view name, const std::vector<std::string>& known) {
    const std::string given = lowerCase(name);
    std::vector<Candidate> candidates;
    for (const std::string& one : known) {
        Candidate found = candidate(given, one);
        if (found.distance <= std::max<std::size_t>(2, given.size() / 3)) {
            candidates.push_back(std::move(found));
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const auto& a, const auto& b) { return a.distance < b.distance; });
    std::vector<std::string> names;
    for (std::size_t k = 0; k < std::min(candidates.size(), kMostSuggestions); ++k) {
        names.push_back(candidates[k].name);
    }
    return names;
}

std::string alternatives(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t k = 0; k < names.size(); ++k) {
        if (k > 0) {
            text += k + 1 == names.size() ? " or " : ", ";
        }
        text += names[k];
    }
    return text;
}

std::string suggestion(std::string_view name, const std::vector<std::string>& known) {
    const std::vector<std::string> near = nearest(name, known);
    if (!near.empty()) {
        return "; did you mean " + alternatives(near) + "?";
    }
    return known.empty() || known.size() > kFewNames ? "" : "; known: " + alternatives(known);
}

}  // namespace orvex::tools
