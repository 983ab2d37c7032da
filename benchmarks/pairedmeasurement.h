// Measures two ways of doing the same thing against each other.
#pragma once

#include <QtCore/QVariant>

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

/// One way of doing something.
struct Way
{
    std::function<void()> prepare; ///< before each time, not measured; may be empty
    std::function<void()> run; ///< measured
    std::function<QVariant()> result; ///< what it came to, not measured
};

/// Highest ratio of our time to the plain way's time that is good enough; 0 when there is none.
using Target = double;
constexpr Target noTarget = 0;

/**
 * Runs both ways in turn until \a state has enough and leaves the figures in its counters, times in
 * microseconds: "ours" and "plain" (medians), "ratio" (median of the rounds' ratios) with "ratioLow" and
 * "ratioHigh" (95 % confidence interval of that median), "oursSyncs" and "plainSyncs" (disk syncs each time),
 * and "target".
 *
 * A round is ours, plain, plain, ours, of which the better time of each side counts: what the machine does
 * meanwhile, and what one run leaves in the caches for the next, falls on both sides alike. An iteration of
 * \a state is one round.
 *
 * It is an error of the benchmark when the two results differ, or when our way syncs the disk more often.
 */
void measurePair(benchmark::State &state, const Way &ours, const Way &plain, Target target);

/// Registers a benchmark that calls measurePair().
void registerPair(const std::string &name, const std::function<void(benchmark::State &)> &function);
