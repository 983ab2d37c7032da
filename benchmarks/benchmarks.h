// The groups of benchmarks; each registers its own.
#pragma once

void registerSettingsBenchmarks();
void registerConstructionBenchmarks();
void registerNotificationBenchmarks();
void registerTabMessageBenchmarks();
void registerAboutBenchmarks();
void registerLocaleBenchmarks();
void registerPrinterOptionBenchmarks();
/// A smoke run leaves out the long lists.
void registerHistoryBenchmarks(bool isSmoke);
void registerHistoryFetchBenchmarks(bool isSmoke);
