// Where a recording tool and the test that uses it find each other's files.
#pragma once

namespace RecordingToolFiles {

/// Environment variable with the folder that all paths below start from.
constexpr char folderVariable[] = "ZB_RECORDING_TOOLS";
/// The tools, as links with the names of the real ones; this folder is the search path.
constexpr char toolFolder[] = "/tools/";
/// One file a run, named after the process: name, process id, standard input, LC_ALL and the arguments, with
/// a NUL byte after each.
constexpr char recordFolder[] = "/records/";
constexpr char partFolder[] = "/parts/";
/// What the tool of that name does, one step a line.
constexpr char stepsFolder[] = "/steps/";
/// What the tool of that name prints.
constexpr char outputFolder[] = "/outputs/";
/// The test holds a lock on it as long as its tools shall stay.
constexpr char holdFile[] = "/hold";

} // namespace RecordingToolFiles
