// Preset: a record with an owner.
#include "preset.h"

#include "preset_p.h"

Preset::Preset(const QString &modelName, const QString &fileName, Preset::_State state,
               const QStringList &options, const QString &displayName, const QString &description, int index)
    : d(new Private{{modelName, displayName, description, index, options}, fileName, state, {}})
{
}

Preset::~Preset()
{
    delete d;
}

QStringList Preset::options() const
{
    return d->record.options;
}
