// Runs every operation over every hostile text at n, 2n and 4n units, and says which of them
// cost more than twice as much, and a tenth, for a text twice as long.
//
// A first look at a case is short, as nearly all are clean. What looks bad is measured again and
// better, on longer texts: only what is bad each time counts, so that the noise of a machine that
// others use fails nothing; and in the last look both doublings must be bad, as one is wherever a
// text outgrows a cache. Work with the square of its input is always found: it shows a factor
// of four in each look, on 32 thousand units even where a unit costs next to nothing.
#include "Growth.h"

#include <fmt/format.h>
#include <linux/perf_event.h>
#include <malloc.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <velmocore/platform/Log.h>
#include <velmocore/query/Wildcards.h>

namespace velmo::growth {

namespace {

constexpr double Limit = 2.2;
constexpr std::size_t LeastUnits = 2048, UsualUnits = 16384;
constexpr int MostRepeats = 2000, LooksBeforeFault = 3, BestOf = 5;
// In seconds: a case is not begun longer, or made longer, that takes this; a first look takes this,
// and one that may end in a verdict.
constexpr double LongRun = 0.01, VeryLongRun = 0.1, ShortLook = 0.0003, LongLook = 0.004;
// What leaves a cache between n and 4n does so no more between 4n and 16n.
constexpr std::size_t NextLook = 4;
// Beyond this, what a text makes of itself outgrows every cache, which no clock can tell from
// work that grows.
constexpr std::size_t MostUnits = 32768;

/// The cost of a piece of work: instructions where the machine counts them for us, else the
/// time that the thread was on the processor.
class Meter {
public:
    Meter() {
        perf_event_attr wanted = {};
        wanted.type = PERF_TYPE_HARDWARE;
        wanted.size = sizeof wanted;
        wanted.config = PERF_COUNT_HW_INSTRUCTIONS;
        wanted.exclude_kernel = 1;
        wanted.exclude_hv = 1;
        counter_ = static_cast<int>(syscall(SYS_perf_event_open, &wanted, 0, -1, -1, 0));
    }
    ~Meter() {
        if (countsInstructions()) close(counter_);
    }
    Meter(const Meter&) = delete;
    Meter& operator=(const Meter&) = delete;

    [[nodiscard]] bool countsInstructions() const { return counter_ >= 0; }

    static double seconds() {
        timespec now = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
    }

    /// Instructions, or else seconds, since some start.
    [[nodiscard]] double now() const {
        std::uint64_t instructions = 0;
        if (countsInstructions() &&
            read(counter_, &instructions, sizeof instructions) == sizeof instructions)
            return static_cast<double>(instructions);
        return seconds();
    }

private:
    int counter_ = -1;
};

/// The sizes of one hostile text, made when they are asked for.
class Inputs {
public:
    explicit Inputs(const Hostile& hostile) : hostile_(hostile) {}

    const Input& operator[](std::size_t units) {
        std::unique_ptr<Input>& input = inputs_[units];
        if (!input) input = std::make_unique<Input>(textOf(hostile_, units));
        return *input;
    }

private:
    const Hostile& hostile_;
    std::map<std::size_t, std::unique_ptr<Input>> inputs_;
};

struct Costs {
    std::size_t units = 0;        ///< n
    std::array<double, 3> costs;  ///< of one run at n, 2n and 4n
    double longest = 0;           ///< seconds of all runs at 4n
    double secondsAt4n = 0;       ///< of one of them

    bool isFault = false;

    /// Of the worse doubling, and of the better one.
    [[nodiscard]] double factor() const {
        return std::max(costs[1] / costs[0], costs[2] / costs[1]);
    }
    [[nodiscard]] double lesserFactor() const {
        return std::min(costs[1] / costs[0], costs[2] / costs[1]);
    }
};

double secondsOf(const Operation& operation, const Input& input) {
    const double start = Meter::seconds();
    operation.run(input);
    return Meter::seconds() - start;
}

class Case {
public:
    Case(const Meter& meter, const Operation& operation, Inputs& inputs)
        : meter_(meter), operation_(operation), inputs_(inputs) {}

    /// The costs, after as many looks as it takes to be sure.
    Costs measured() {
        std::size_t units = fittingUnits();
        Costs costs = look(units, ShortLook, 1);
        for (int looks = 0; looks < LooksBeforeFault && costs.factor() > Limit; ++looks) {
            costs = look(units, LongLook, BestOf);
            if (costs.longest < LongLook) return constant(costs);
            if (costs.secondsAt4n < VeryLongRun)
                units = std::max(units, std::min(units * NextLook, MostUnits));
        }
        // Instructions say the same each time; a clock also sees a text outgrow a cache, once.
        costs.isFault =
            (meter_.countsInstructions() ? costs.factor() : costs.lesserFactor()) > Limit;
        return costs;
    }

private:
    /// What costs a few nanoseconds at 4n does not grow, whatever the clock says.
    static Costs constant(Costs costs) {
        costs.costs.fill(costs.costs[0]);
        return costs;
    }

    /// As many units as usual, or fewer where the operation is slow already.
    std::size_t fittingUnits() {
        operation_.run(inputs_[LeastUnits]);  // makes the tables
        std::size_t units = std::max(LeastUnits, operation_.leastUnits);
        while (units < UsualUnits && secondsOf(operation_, inputs_[units]) < LongRun) units *= 2;
        return units;
    }

    Costs look(std::size_t units, double least, int rounds) {
        const double once = secondsOf(operation_, inputs_[units]);
        const int repeats = std::clamp(static_cast<int>(least / (once + 1e-9)), 1, MostRepeats);
        Costs best = {.units = units, .costs = {1e300, 1e300, 1e300}};
        for (int round = 0; round < rounds; ++round) {
            for (std::size_t step = 0; step < best.costs.size(); ++step) {
                const Input& input = inputs_[units << step];
                const double start = Meter::seconds(), from = meter_.now();
                for (int repeat = 0; repeat < repeats; ++repeat) operation_.run(input);
                best.costs[step] =
                    std::min(best.costs[step], (meter_.now() - from) / repeats + 1e-12);
                best.longest = Meter::seconds() - start;
                best.secondsAt4n = best.longest / repeats;
            }
            if (best.factor() <= Limit) break;
        }
        return best;
    }

    const Meter& meter_;
    const Operation& operation_;
    Inputs& inputs_;
};

struct Report {
    std::string rows;
    std::size_t cases = 0, faults = 0;
};

void report(const Meter& meter, const Hostile& hostile, const Operation& operation,
            const Costs& costs, Report& report) {
    const double scale = meter.countsInstructions() ? 1 : 1e6;
    fmt::format_to(std::back_inserter(report.rows),
                   "{:<30} {:<34} {:>7} {:>12.2f} {:>12.2f} {:>12.2f} {:>6.2f}{}\n", hostile.name,
                   operation.name, costs.units, costs.costs[0] * scale, costs.costs[1] * scale,
                   costs.costs[2] * scale, costs.factor(), costs.isFault ? "  TOO MUCH" : "");
    ++report.cases;
    report.faults += costs.isFault;
}

Report checkFamily(const Meter& meter, const Hostile& hostile) {
    Inputs inputs(hostile);
    Report result;
    for (const auto operations :
         {textOperations(), cleaningOperations(), wordOperations(), queryOperations(),
          urlOperations(), markupOperations(), feedOperations(), storageOperations(),
          systemOperations(), readerOperations(), netOperations(), gatherOperations(),
          sourceOperations()})
        for (const Operation& operation : operations)
            report(meter, hostile, operation, Case(meter, operation, inputs).measured(), result);
    return result;
}

/// The families whose name contains what is wanted.
std::vector<const Hostile*> families(std::string_view wanted) {
    std::vector<const Hostile*> found;
    for (const auto texts : {plainTexts(), markupTexts(), locationTexts(), queryTexts(),
                             dateTexts(), sheetTexts(), netTexts(), sourceTexts()})
        for (const Hostile& hostile : texts)
            if (std::string_view(hostile.name).find(wanted) != std::string_view::npos)
                found.push_back(&hostile);
    return found;
}

/// Checks all families with a thread for each processor, and prints a family when it is done.
Report checkAll(std::span<const Hostile* const> all) {
    std::atomic<std::size_t> next = 0;
    std::mutex printing;
    Report total;
    const auto work = [&] {
        const Meter meter;  // counts for the thread that makes it
        for (std::size_t i = next++; i < all.size(); i = next++) {
            const Report family = checkFamily(meter, *all[i]);
            const std::lock_guard lock(printing);
            std::fputs(family.rows.c_str(), stdout);
            std::fflush(stdout);
            total.cases += family.cases;
            total.faults += family.faults;
        }
    };
    std::vector<std::jthread> threads(std::max(1u, std::thread::hardware_concurrency()));
    for (std::jthread& thread : threads) thread = std::jthread(work);
    threads.clear();
    return total;
}

int run(std::string_view wanted) {
    // Memory that goes back to the system costs anew at each run, which is no work of ours. 32 MB
    // is the most that is taken; and the heaps of other threads are given back all the same.
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_ARENA_MAX, 1);
    setLogHandler([](std::string_view) {});
    initSeparatorsAndTables();
    fmt::print("{:<30} {:<34} {:>7} {:>12} {:>12} {:>12} {:>6}\n", "family", "operation", "n",
               Meter().countsInstructions() ? "instr. at n" : "usec at n", "at 2n", "at 4n",
               "factor");
    const std::vector<const Hostile*> all = families(wanted);
    const Report total = checkAll(all);
    fmt::print("{} families, {} cases, {} of them with a factor above {}\n", all.size(),
               total.cases, total.faults, Limit);
    return total.cases > 0 && total.faults == 0 ? 0 : 1;
}

}  // namespace

}  // namespace velmo::growth

int main(int count, char** arguments) { return velmo::growth::run(count > 1 ? arguments[1] : ""); }
