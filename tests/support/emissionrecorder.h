// Follows every signal of an object, whatever its class declares.
#pragma once

#include <QtCore/QMetaMethod>
#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QVariantList>
#include <QtCore/QVector>

/**
 * Records each emission of each signal that the class of an object declares beyond QObject's own, in the
 * order of emission, so that a test sees the signals that it did not expect too.
 */
class EmissionRecorder : public QObject
{
public:
    struct Emission
    {
        QString signal; ///< the signal's name
        QVariantList arguments;
    };

    explicit EmissionRecorder(const QObject *sender);

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override;

    QVector<Emission> emissions() const;
    /// The names of the emitted signals alone.
    QStringList names() const;
    /// The first argument of each emission of \a signal.
    QVariantList values(const QString &signal) const;
    /// Runs the event loop until there are \a count emissions; false when that takes too long.
    bool waitFor(int count);
    void clear();

private:
    QVector<QMetaMethod> m_signals;
    QVector<Emission> m_emissions;
};
