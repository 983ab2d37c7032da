// What the paired measurements came to: a line on the screen as each ends, and a table and a JSON file at the
// end.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <benchmark/benchmark.h>

/// The figures of one operation, times in microseconds.
struct Comparison
{
    QString operation;
    double ours = 0;
    double plain = 0;
    double ratio = 0;
    double ratioLow = 0;
    double ratioHigh = 0;
    double oursSyncs = 0;
    double plainSyncs = 0;
    double target = 0; ///< 0 when there is none
    qint64 rounds = 0;
    QString error; ///< empty when the results were equal

    bool missesTarget() const { return target > 0 && ratio > target; }
    /// The table's columns: operation, ours, plain Qt, ratio with its interval, target, verdict.
    QStringList columns(bool isGated) const;
};

class RatioReport : public benchmark::BenchmarkReporter
{
public:
    /// Without \a isGated only the results are judged, since the times are not worth it.
    explicit RatioReport(bool isGated);

    bool ReportContext(const Context &context) override;
    /// Keeps and prints a run. Of an operation that was measured before, the better ratio is kept.
    void ReportRuns(const std::vector<Run> &runs) override;

    bool hasError() const;
    /// The operations that miss their target.
    QStringList misses() const;

    /// Writes BASE.md and BASE.json.
    bool write(const QString &base) const;

private:
    void keep(const Comparison &comparison);
    QString markdown() const;
    QByteArray json() const;

    const bool m_isGated;
    QVector<Comparison> m_comparisons;
};
