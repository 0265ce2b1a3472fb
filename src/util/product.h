// What the program calls itself, and where its maker is reached.
#pragma once

namespace zandrel {

/// Caption of `lblVersion`.
inline constexpr char kProgramVersion[] = "Zandrel v2.132";

/// Where scans of unknown builds are to be sent. A configuration value of whoever ships the program.
inline constexpr char kSupportAddress[] = "support@zandrel.example";

}  // namespace zandrel
