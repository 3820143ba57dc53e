#include "comparison/comparison.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <utility>

#include <nlohmann/json.hpp>

namespace lvx::comparison {

namespace {

std::string fixed(double value, int decimals) {
  std::array<char, 64> digits{};
  const auto [end, error] =
      std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, decimals);
  return error == std::errc() ? std::string(digits.data(), end) : "?";
}

/// To three digits or so.
std::string duration(double seconds) {
  if (seconds < 0.1) return fixed(1000.0 * seconds, seconds < 0.01 ? 2 : 1) + " ms";
  return fixed(seconds, seconds < 10.0 ? 2 : 1) + " s";
}

std::string exact(double value) {
  std::array<char, 32> digits{};
  return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr};
}

double medianOf(const std::vector<Result>& results, double Result::*figure) {
  std::vector<double> values;
  for (const Result& result : results) values.push_back(result.*figure);
  return median(std::move(values));
}

bool agree(const std::string& fact, double ours, double theirs, double tolerance) {
  if (!fact.starts_with("sum_")) return ours == theirs;
  return std::abs(ours - theirs) <= tolerance * std::max(std::abs(ours), std::abs(theirs));
}

}  // namespace

double median(std::vector<double> values) {
  if (values.empty()) return 0.0;
  std::sort(values.begin(), values.end());
  return 0.5 * (values[values.size() / 2] + values[(values.size() - 1) / 2]);
}

std::optional<Result> parseResult(std::string_view line) {
  if (!line.starts_with('{')) return std::nullopt;
  const nlohmann::json object = nlohmann::json::parse(line, nullptr, false);
  Result result;
  bool hasSeconds = false;
  bool hasMemory = false;
  if (object.is_object() && object.contains("peer") && object["peer"].is_string()) {
    result.candidate = object["peer"];
    for (const auto& [name, value] : object.items()) {
      if (!value.is_number()) continue;
      const double number = value;
      if (name == "seconds")
        result.seconds = number, hasSeconds = number > 0.0;
      else if (name == "rss_mb")
        result.megabytes = number, hasMemory = true;
      else
        result.facts[name] = number;
    }
  }
  if (!hasSeconds || !hasMemory)
    throw std::runtime_error("a line without peer, seconds above 0 and rss_mb: " + std::string(line));
  return result;
}

void Comparison::add(Result result) {
  const std::string candidate = result.candidate;
  results_[candidate].push_back(std::move(result));
}

const std::vector<Result>* Comparison::resultsOf(const std::string& candidate) const {
  const auto found = results_.find(candidate);
  return found == results_.end() ? nullptr : &found->second;
}

std::vector<std::string> Comparison::disagreements() const {
  const std::vector<Result>* const ours = resultsOf(job_.ours);
  if (ours == nullptr) return {job_.name + ": no result of " + job_.ours};
  std::vector<std::string> lines;
  const Result& first = ours->front();
  const auto compare = [&](const Result& result, double tolerance) {
    for (const std::string& fact : job_.facts) {
      const auto mine = first.facts.find(fact);
      const auto theirs = result.facts.find(fact);
      std::string difference;
      if (mine == first.facts.end() || theirs == result.facts.end())
        difference = (mine == first.facts.end() ? first : result).candidate + " doesn't tell its " + fact;
      else if (!agree(fact, mine->second, theirs->second, tolerance))
        difference = fact + " is " + exact(mine->second) + " of " + first.candidate + ", " + exact(theirs->second) +
                     " of " + result.candidate;
      if (difference.empty()) continue;
      difference.insert(0, job_.name + ": ");
      if (std::find(lines.begin(), lines.end(), difference) == lines.end()) lines.push_back(difference);
    }
  };
  for (const Result& result : *ours) compare(result, 0.0);
  for (const Peer& peer : job_.peers)
    if (const std::vector<Result>* const theirs = resultsOf(peer.name))
      for (const Result& result : *theirs) compare(result, peer.tolerance);
  return lines;
}

std::string Comparison::head() {
  return "| Job | Peer | Peer's time | Ours | Ours by peer's (least, most) | Goal | Memory, peer's | Ours |\n"
         "|---|---|---|---|---|---|---|---|\n";
}

std::string Comparison::rows() const {
  const std::vector<Result>* const ours = resultsOf(job_.ours);
  if (ours == nullptr) return {};
  const std::string ourTime = duration(medianOf(*ours, &Result::seconds));
  const std::string ourMemory = fixed(medianOf(*ours, &Result::megabytes), 0) + " MB";
  std::string rows;
  bool isFirst = true;
  for (const Peer& peer : job_.peers) {
    const std::vector<Result>* const theirs = resultsOf(peer.name);
    if (theirs == nullptr) continue;
    std::vector<double> ratios;
    for (std::size_t i = 0; i < std::min(ours->size(), theirs->size()); ++i)
      ratios.push_back((*ours)[i].seconds / (*theirs)[i].seconds);
    const auto [least, most] = std::minmax_element(ratios.begin(), ratios.end());
    rows += "| " + job_.title + " | " + peer.name + (peer.isBound ? " (bound)" : "") + " | " +
            duration(medianOf(*theirs, &Result::seconds)) + " | " + ourTime + " | " + fixed(median(ratios), 2) + " (" +
            fixed(*least, 2) + ", " + fixed(*most, 2) + ") | " + (isFirst ? job_.goal : "") + " | " +
            fixed(medianOf(*theirs, &Result::megabytes), 0) + " MB | " + ourMemory + " |\n";
    isFirst = false;
  }
  if (rows.empty()) rows = "| " + job_.title + " | | | " + ourTime + " | | " + job_.goal + " | | " + ourMemory + " |\n";
  return rows;
}

}  // namespace lvx::comparison
