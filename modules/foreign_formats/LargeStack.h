#pragma once

#include <functional>

/// Runs work that recurses as deep as a file says: on a thread with a stack of its own, large enough for what
/// is not made to break it. `whileWaiting` is called now and then on the calling thread. What the work throws
/// arrives at the caller.
void runOnLargeStack(std::function<void()> const& work, std::function<void()> const& whileWaiting = {});
