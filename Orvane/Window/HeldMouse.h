#pragma once

#include <functional>

class QObject;

namespace orvane {

/// Whether a mouse button is down, over a slider or a handle as it may be: until it is let go,
/// nothing else may change what lies under the hand.
bool isMouseHeld();

/// Calls `then` at once, or as soon as no mouse button is down; not at all after `context` is gone.
void whenMouseIsFree(QObject* context, std::function<void()> then);

} // namespace orvane
