#include "KeyMapping.h"

namespace velmora::detail {

int legacyKeyCode(const QKeyEvent &event)
{
    const int k = event.key();
    const bool keypad = event.modifiers() & Qt::KeypadModifier;
    if (k >= Qt::Key_A && k <= Qt::Key_Z)
        return 65 + (k - Qt::Key_A);
    if (k >= Qt::Key_0 && k <= Qt::Key_9)
        return (keypad ? 96 : 48) + (k - Qt::Key_0);
    if (k >= Qt::Key_F1 && k <= Qt::Key_F24)
        return 112 + (k - Qt::Key_F1);
    switch (k) {
    case Qt::Key_Backspace:
        return 8;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return 9;
    case Qt::Key_Clear:
        return 12;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return 13;
    case Qt::Key_Shift:
        return 16;
    case Qt::Key_Control:
        return 17;
    case Qt::Key_Alt:
        return 18;
    case Qt::Key_Pause:
        return 19;
    case Qt::Key_CapsLock:
        return 20;
    case Qt::Key_Escape:
        return 27;
    case Qt::Key_Space:
        return 32;
    case Qt::Key_PageUp:
        return 33;
    case Qt::Key_PageDown:
        return 34;
    case Qt::Key_End:
        return 35;
    case Qt::Key_Home:
        return 36;
    case Qt::Key_Left:
        return 37;
    case Qt::Key_Up:
        return 38;
    case Qt::Key_Right:
        return 39;
    case Qt::Key_Down:
        return 40;
    case Qt::Key_Print:
        return 44;
    case Qt::Key_Insert:
        return 45;
    case Qt::Key_Delete:
        return 46;
    case Qt::Key_Menu:
        return 93;
    case Qt::Key_Asterisk:
        return keypad ? 106 : 56;
    case Qt::Key_Plus:
        return keypad ? 107 : 187;
    case Qt::Key_Minus:
        return keypad ? 109 : 189;
    case Qt::Key_Period:
        return keypad ? 110 : 190;
    case Qt::Key_Comma:
        return keypad ? 110 : 188;
    case Qt::Key_Slash:
        return keypad ? 111 : 191;
    case Qt::Key_NumLock:
        return 144;
    case Qt::Key_ScrollLock:
        return 145;
    case Qt::Key_Semicolon:
        return 186;
    case Qt::Key_Equal:
        return 187;
    case Qt::Key_QuoteLeft:
        return 192;
    case Qt::Key_BracketLeft:
        return 219;
    case Qt::Key_Backslash:
        return 220;
    case Qt::Key_BracketRight:
        return 221;
    case Qt::Key_Apostrophe:
        return 222;
    default:
        return UnmappedCharacterKey;
    }
}

int legacyShift(Qt::KeyboardModifiers modifiers)
{
    int shift = 0;
    if (modifiers & Qt::ShiftModifier)
        shift |= 1;
    if (modifiers & Qt::ControlModifier)
        shift |= 2;
    if (modifiers & Qt::AltModifier)
        shift |= 4;
    return shift;
}

} // namespace velmora::detail
