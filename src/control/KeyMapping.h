#pragma once

// Qt key events in the legacy key codes and Shift bits that the field's key events
// carry (Left 37, Delete 46, F1 112, letters by their capital's code; Shift 1, Ctrl 2,
// Alt 4). A character key that has no code of its own (a national letter) is 229.

#include <QtGui/QKeyEvent>

namespace velmora::detail {

constexpr int UnmappedCharacterKey = 229;

int legacyKeyCode(const QKeyEvent &event);
int legacyShift(Qt::KeyboardModifiers modifiers);

} // namespace velmora::detail
