// What a preset holds, for the list that owns it.
#pragma once

#include "preset.h"
#include "presettext.h"

struct Preset::Private
{
    PresetRecord record;
    QString fileName; ///< as wished for
    _State state;
    QString storedAs; ///< name of the file that holds the preset; empty as long as there is none
};
