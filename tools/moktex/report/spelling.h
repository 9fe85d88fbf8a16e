#pragma once

#include <span>
#include <string>

namespace moktextool {

/// `text` with the letters A to Z in lower case.
std::string lowerCase(std::string text);

/// The candidate that a misspelt word most likely means: the shortest one that starts with the word, or else the one with the
/// fewest letters to insert, drop, replace or swap, at most a third of the word's. "" if there is none. Case is ignored.
std::string nearestName(const std::string& word, std::span<const std::string> candidates);

}  // namespace moktextool
