// How long an operation may hold the event loop, with room for a machine that has other things to do.
#pragma once

/// A tool that is read back is waited for so long, in milliseconds.
constexpr int toolTime = 500;
/// What a loaded machine may add, the time in which a tool starts included. Less than toolTime, so that one
/// wait too many shows.
constexpr int loadTime = 400;

/// The longest pause that an operation with one wait for a tool may make.
constexpr int longestWait = toolTime + loadTime;
/// The longest pause that an operation without a wait may make.
constexpr int longestStart = loadTime;
