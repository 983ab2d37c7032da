// The rounds of a paired measurement and their statistics.
#include "pairedmeasurement.h"

#include "disksync.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

namespace {

class Side
{
public:
    explicit Side(const Way &way)
        : m_way(way)
    {
    }

    /// Does it once and returns how long it took, in microseconds.
    double runOnce()
    {
        if (m_way.prepare)
            m_way.prepare();
        const long syncsBefore = DiskSync::count();
        const auto start = std::chrono::steady_clock::now();
        m_way.run();
        const auto end = std::chrono::steady_clock::now();
        m_syncs += DiskSync::count() - syncsBefore;
        ++m_runs;
        m_result = m_way.result();
        return std::chrono::duration<double, std::micro>(end - start).count();
    }

    const QVariant &result() const { return m_result; }
    double syncs() const { return double(m_syncs) / double(m_runs); }

private:
    const Way &m_way;
    QVariant m_result;
    long m_syncs = 0;
    long m_runs = 0;
};

struct Round
{
    double ours = 0;
    double plain = 0;
    double all = 0;
    bool isSame = false;
};

// What else the machine does only ever adds to a time, so the better of two is the truer one.
Round runRound(Side &ours, Side &plain)
{
    const double ours1 = ours.runOnce();
    const double plain1 = plain.runOnce();
    const bool isSame = ours.result() == plain.result();
    const double plain2 = plain.runOnce();
    const double ours2 = ours.runOnce();
    return {std::min(ours1, ours2), std::min(plain1, plain2), ours1 + plain1 + plain2 + ours2,
            isSame && ours.result() == plain.result()};
}

/// Median of \a values, which are sorted, and its 95 % confidence interval by the order of the values alone.
struct Median
{
    explicit Median(std::vector<double> values)
    {
        std::sort(values.begin(), values.end());
        const size_t count = values.size();
        value = (values[(count - 1) / 2] + values[count / 2]) / 2;
        const double lowRank = std::floor(double(count) / 2 - 0.98 * std::sqrt(double(count)));
        const auto outside = size_t(std::max(lowRank, 0.0));
        low = values[outside];
        high = values[count - 1 - outside];
    }

    double value = 0;
    double low = 0;
    double high = 0;
};

} // namespace

void measurePair(benchmark::State &state, const Way &ours, const Way &plain, Target target)
{
    Side ourSide(ours);
    Side plainSide(plain);
    runRound(ourSide, plainSide); // fills caches that the first run of a process fills

    std::vector<double> ourTimes;
    std::vector<double> plainTimes;
    std::vector<double> ratios;
    for ([[maybe_unused]] const auto iteration : state) {
        const Round round = runRound(ourSide, plainSide);
        if (!round.isSame) {
            state.SkipWithError("the results differ");
            return;
        }
        ourTimes.push_back(round.ours);
        plainTimes.push_back(round.plain);
        ratios.push_back(round.ours / round.plain);
        state.SetIterationTime(round.all / 1e6);
    }
    if (ourSide.syncs() > plainSide.syncs()) {
        state.SkipWithError("our way syncs the disk more often");
        return;
    }

    const Median ratio(ratios);
    state.counters["ours"] = Median(ourTimes).value;
    state.counters["plain"] = Median(plainTimes).value;
    state.counters["ratio"] = ratio.value;
    state.counters["ratioLow"] = ratio.low;
    state.counters["ratioHigh"] = ratio.high;
    state.counters["oursSyncs"] = ourSide.syncs();
    state.counters["plainSyncs"] = plainSide.syncs();
    state.counters["target"] = target;
}

void registerPair(const std::string &name, const std::function<void(benchmark::State &)> &function)
{
    benchmark::RegisterBenchmark(name.c_str(), function)->UseManualTime()->Unit(benchmark::kMicrosecond);
}
