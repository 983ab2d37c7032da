// Collects comparisons and formats them.
#include "ratioreport.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSaveFile>

#include <algorithm>
#include <cstdio>

namespace {

const QStringList titles = {
    QStringLiteral("operation"), QStringLiteral("ours"),   QStringLiteral("plain Qt"),
    QStringLiteral("ratio"),     QStringLiteral("target"), QStringLiteral("verdict"),
};

QString timeText(double microseconds)
{
    return microseconds < 1000 ? QStringLiteral("%1 µs").arg(microseconds, 0, 'f', 1)
                               : QStringLiteral("%1 ms").arg(microseconds / 1000, 0, 'f', 2);
}

QString ratioText(double ratio)
{
    return QString::number(ratio, 'f', 2);
}

Comparison comparisonFrom(const benchmark::BenchmarkReporter::Run &run)
{
    Comparison comparison;
    comparison.operation = QString::fromStdString(run.run_name.function_name);
    if (run.error_occurred) {
        comparison.error = QString::fromStdString(run.error_message);
        return comparison;
    }
    comparison.ours = run.counters.at("ours");
    comparison.plain = run.counters.at("plain");
    comparison.ratio = run.counters.at("ratio");
    comparison.ratioLow = run.counters.at("ratioLow");
    comparison.ratioHigh = run.counters.at("ratioHigh");
    comparison.oursSyncs = run.counters.at("oursSyncs");
    comparison.plainSyncs = run.counters.at("plainSyncs");
    comparison.target = run.counters.at("target");
    comparison.rounds = run.iterations;
    return comparison;
}

QJsonObject jsonFrom(const Comparison &comparison)
{
    if (!comparison.error.isEmpty()) {
        return {{QStringLiteral("operation"), comparison.operation},
                {QStringLiteral("error"), comparison.error}};
    }
    return {
        {QStringLiteral("operation"), comparison.operation},
        {QStringLiteral("oursMicroseconds"), comparison.ours},
        {QStringLiteral("plainMicroseconds"), comparison.plain},
        {QStringLiteral("ratio"), comparison.ratio},
        {QStringLiteral("ratioLow"), comparison.ratioLow},
        {QStringLiteral("ratioHigh"), comparison.ratioHigh},
        {QStringLiteral("oursSyncs"), comparison.oursSyncs},
        {QStringLiteral("plainSyncs"), comparison.plainSyncs},
        {QStringLiteral("target"), comparison.target > 0 ? QJsonValue(comparison.target) : QJsonValue()},
        {QStringLiteral("rounds"), comparison.rounds},
    };
}

void printOnScreen(const QStringList &columns)
{
    const auto padded = [](const QString &text, int width) { return text.leftJustified(width).toUtf8(); };
    std::printf("%s %s %s %s %s %s\n", padded(columns.at(0), 38).constData(),
                padded(columns.at(1), 10).constData(), padded(columns.at(2), 10).constData(),
                padded(columns.at(3), 19).constData(), padded(columns.at(4), 7).constData(),
                columns.at(5).toUtf8().constData());
    std::fflush(stdout);
}

bool writeFile(const QString &name, const QByteArray &content)
{
    QSaveFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit();
}

} // namespace

QStringList Comparison::columns(bool isGated) const
{
    const QString none = QStringLiteral("–");
    if (!error.isEmpty())
        return {operation, none, none, none, none, QStringLiteral("ERROR: ") + error};
    QString verdict = isGated ? none : QStringLiteral("equal");
    if (isGated && target > 0)
        verdict = missesTarget() ? QStringLiteral("misses") : QStringLiteral("holds");
    return {
        operation,
        timeText(ours),
        timeText(plain),
        QStringLiteral("%1 (%2 to %3)").arg(ratioText(ratio), ratioText(ratioLow), ratioText(ratioHigh)),
        target > 0 ? ratioText(target) : none,
        verdict,
    };
}

RatioReport::RatioReport(bool isGated)
    : m_isGated(isGated)
{
}

bool RatioReport::ReportContext(const Context &)
{
    printOnScreen(titles);
    return true;
}

void RatioReport::ReportRuns(const std::vector<Run> &runs)
{
    for (const Run &run : runs) {
        const Comparison comparison = comparisonFrom(run);
        printOnScreen(comparison.columns(m_isGated));
        keep(comparison);
    }
}

void RatioReport::keep(const Comparison &comparison)
{
    const auto known =
        std::find_if(m_comparisons.begin(), m_comparisons.end(), [&comparison](const Comparison &other) {
            return other.operation == comparison.operation;
        });
    if (known == m_comparisons.end())
        m_comparisons.append(comparison);
    else if (!comparison.error.isEmpty() || (known->error.isEmpty() && comparison.ratio < known->ratio))
        *known = comparison;
}

bool RatioReport::hasError() const
{
    return std::any_of(m_comparisons.begin(), m_comparisons.end(),
                       [](const Comparison &comparison) { return !comparison.error.isEmpty(); });
}

QStringList RatioReport::misses() const
{
    QStringList operations;
    for (const Comparison &comparison : m_comparisons) {
        if (m_isGated && comparison.missesTarget())
            operations.append(comparison.operation);
    }
    return operations;
}

bool RatioReport::write(const QString &base) const
{
    return writeFile(base + QStringLiteral(".md"), markdown().toUtf8())
        && writeFile(base + QStringLiteral(".json"), json());
}

QString RatioReport::markdown() const
{
    const auto row = [](const QStringList &columns) {
        return QStringLiteral("| ") + columns.join(QStringLiteral(" | ")) + QStringLiteral(" |\n");
    };
    QString table = row(titles) + QStringLiteral("|---|---|---|---|---|---|\n");
    for (const Comparison &comparison : m_comparisons)
        table += row(comparison.columns(m_isGated));
    return table;
}

QByteArray RatioReport::json() const
{
    QJsonArray comparisons;
    for (const Comparison &comparison : m_comparisons)
        comparisons.append(jsonFrom(comparison));
    return QJsonDocument(comparisons).toJson();
}
