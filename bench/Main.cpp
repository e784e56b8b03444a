// Runs the cases and prints, for each pair named CASE/velmo and CASE/PEER, how many times
// faster the first is. Each case runs several times, in random order among the others, and
// its fastest run counts: what a shared machine adds to a run says nothing of the code.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "Machine.h"

namespace {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Aggregate) continue;
            const std::string name = run.run_name.function_name;
            const std::size_t slash = name.rfind('/');
            if (slash == std::string::npos) continue;
            // What waits for others, or works on other threads, is measured by the clock.
            const bool isReal = run.run_name.time_type == "real_time";
            const double time = isReal ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
            auto [entry, isNew] =
                times_[name.substr(0, slash)].try_emplace(name.substr(slash + 1), time);
            if (!isNew) entry->second = std::min(entry->second, time);
        }
    }

    void printRatios() const {
        std::printf("\n%-32s %-16s %s\n", "case", "peer", "ratio");
        for (const auto& [name, times] : times_) {
            const auto own = times.find("velmo");
            if (own == times.end()) continue;
            for (const auto& [peer, time] : times)
                if (peer != "velmo")
                    std::printf("%-32s %-16s %.2f\n", name.c_str(), peer.c_str(),
                                time / own->second);
        }
    }

private:
    std::map<std::string, std::map<std::string, double>> times_;
};

}  // namespace

int main(int argc, char** argv) {
    velmo::bench::chooseMachine();
    std::vector<char*> arguments(argv, argv + argc);
    char repetitions[] = "--benchmark_repetitions=7";
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    char time[] = "--benchmark_min_time=0.2";
    arguments.insert(arguments.begin() + 1, {repetitions, interleaving, time});
    argc = static_cast<int>(arguments.size());
    argv = arguments.data();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
}
