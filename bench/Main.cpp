// Runs the cases and prints, for each pair named CASE/velmo and CASE/PEER, how many times
// faster the first is.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

namespace {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
            const std::string name = run.run_name.function_name;
            const std::size_t slash = name.rfind('/');
            if (slash == std::string::npos) continue;
            times_[name.substr(0, slash)][name.substr(slash + 1)] = run.GetAdjustedCPUTime();
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
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
}
