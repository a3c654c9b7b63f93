// SPDX-License-Identifier: MIT
#pragma once

namespace System {

/// The init_priority of a static that the statics of a program may need while they are made and while they
/// end: it is made before them and lasts longer, in the shared and in the static library.
inline constexpr int OUTLIVES_STATICS = 101;

} // namespace System
