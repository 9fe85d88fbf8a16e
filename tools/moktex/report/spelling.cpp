#include "moktex/report/spelling.h"

#include <algorithm>
#include <vector>

namespace moktextool {

namespace {

/// How many letters must be inserted, dropped, replaced, or swapped with their neighbour to make `a` of `b`.
std::size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> beforeLast(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row[b.size()];
}

/// Longer words than any name are not searched for.
constexpr std::size_t longestWord = 40;

}  // namespace

std::string lowerCase(std::string text) {
    for (char& letter : text) {
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    }
    return text;
}

std::string nearestName(const std::string& word, std::span<const std::string> candidates) {
    if (word.empty() || word.size() > longestWord) return "";
    const std::string wanted = lowerCase(word);
    std::string begun, nearest;
    std::size_t smallest = std::max<std::size_t>(1, wanted.size() / 3);
    for (const std::string& candidate : candidates) {
        const std::string name = lowerCase(candidate);
        if (name.starts_with(wanted) && (begun.empty() || candidate.size() < begun.size())) begun = candidate;
        const std::size_t distance = editDistance(wanted, name);
        if (distance < smallest || (distance == smallest && nearest.empty())) {
            smallest = distance;
            nearest = candidate;
        }
    }
    return begun.empty() ? nearest : begun;
}

}  // namespace moktextool
