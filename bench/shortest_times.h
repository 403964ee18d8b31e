// A reporter for benchmarks that end with ratios of their own.
#ifndef ZR_BENCH_SHORTEST_TIMES_H
#define ZR_BENCH_SHORTEST_TIMES_H

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {

// Shows the rows as usual, and keeps the shortest time of each.
class ShortestTimes : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs) {
            if (run.run_type != Run::RT_Iteration)
                continue;
            const double time = run.GetAdjustedCPUTime();
            const auto [row, fresh] = m_times.try_emplace(run.run_name.function_name, time);
            if (!fresh)
                row->second = std::min(row->second, time);
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // Processor time in the unit of the row; none if the row did not run.
    std::optional<double> Time(const std::string &row) const {
        const auto found = m_times.find(row);
        return found == m_times.end() ? std::nullopt : std::optional(found->second);
    }

private:
    std::map<std::string, double> m_times;
};

} // namespace bench

#endif
