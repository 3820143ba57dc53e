#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Programs that do the same job beside each other: what they print, whether they agree, and the table of what they took.
///
///     Comparison comparison(job);
///     comparison.add(*parseResult(line));        // every line of every program, round after round
///     if (!comparison.disagreements().empty()) … // before any figure is believed
///     text += comparison.rows();
namespace lvx::comparison {

/// What a program tells of one run of a job.
struct Result {
  std::string candidate;
  double seconds = 0.0;
  double megabytes = 0.0;  ///< peak memory, in units of 1,048,576 bytes
  std::map<std::string, double> facts;
};

/// Reads one line of a program: an object of JSON with "peer", "seconds", "rss_mb" and other numbers, which become facts.
/// Empty for a line that isn't an object. Throws std::runtime_error for one that is and lacks one of those.
[[nodiscard]] std::optional<Result> parseResult(std::string_view line);

/// Somebody who does a job beside us.
struct Peer {
  std::string name;
  bool isBound = false;  ///< no peer, but the least that the job could take
  /// Relative difference up to which a sum agrees with ours. Counts and hashes agree only where they are equal.
  double tolerance = 1e-9;
};

struct Job {
  std::string name;                ///< by which it is asked for
  std::string title;               ///< with the size of its data
  std::string ours;                ///< the candidate that is ours
  std::string goal;                ///< what the ratio to the first peer should be; empty for none
  std::vector<std::string> facts;  ///< what all candidates must tell alike; those called sum_… are sums
  std::vector<Peer> peers;
};

/// The results of one job in all rounds.
class Comparison {
 public:
  explicit Comparison(Job job) : job_(std::move(job)) {}
  void add(Result result);

  /// A line for each fact on which a peer and ours differ, or that one of them doesn't tell, or changes from round to round;
  /// also where ours told nothing. A peer without results is left out, not a difference.
  [[nodiscard]] std::vector<std::string> disagreements() const;
  /// A row of Markdown for each peer with results; one alone for ours where there is none. The ratio is the median of the
  /// rounds' ratios, with the least and the largest: seconds of ours by those of the peer in the same round.
  [[nodiscard]] std::string rows() const;

  /// The two lines above the rows.
  [[nodiscard]] static std::string head();

 private:
  [[nodiscard]] const std::vector<Result>* resultsOf(const std::string& candidate) const;

  Job job_;
  std::map<std::string, std::vector<Result>> results_;
};

/// Of an even count the mean of both in the middle; 0 of none.
[[nodiscard]] double median(std::vector<double> values);

}  // namespace lvx::comparison
