// The QML module Corvanta.SettingsApplication 1.0: what the pages take from this program beside the back end.
#pragma once

/// Registers NetworkTime, ClockCheck and ServicePresence for use in QML, and the singletons ToolOutput,
/// KeyboardLayouts, ListSearch, PresetNames and PrinterFiles.
void registerApplicationTypes();
