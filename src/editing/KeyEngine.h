#pragma once

// The editing engine: key-down dispatch, caret and selection, Enter and arrow
// actions, overwrite caret, cut and paste, and the entry rules of the four input
// types. It works on an EditBox and asks its EditHost for the field's settings and
// services, so that it runs the same on the real QLineEdit and in memory.

#include "EditBox.h"
#include "format/ParsedFormat.h"

#include <velmora/Types.h>

#include <QtCore/QString>

#include <vector>

namespace velmora::detail {

// Legacy key codes and Shift bits of the key events.
namespace key {
constexpr int Backspace = 8, Tab = 9, Enter = 13, ShiftKey = 16, PageUp = 33, PageDown = 34,
              End = 35, Home = 36, Left = 37, Up = 38, Right = 39, Down = 40, Insert = 45,
              Delete = 46, V = 86, X = 88, Y = 89, Z = 90, F1 = 112;
constexpr int ShiftBit = 1, CtrlBit = 2, AltBit = 4;
} // namespace key

// What the engine needs from the field. Settings are read on every key, so a host
// may change them between keys.
class EditHost
{
public:
    virtual ~EditHost() = default;

    virtual InpType inputType() const = 0;
    virtual DisplMode displayMode() const = 0;
    virtual EntAction enterAction() const = 0;
    virtual ArrAction arrowAction() const = 0;
    virtual ControlLengthConst controlLength() const = 0;
    virtual bool setList() const = 0;
    virtual bool selectText() const = 0;
    virtual bool autoTab() const = 0;
    virtual qint16 maxLength() const = 0;
    virtual QString formatStr() const = 0;
    virtual const ParsedFormat &parsedFormat() const = 0;
    // Run mode (true) or design mode (false) of the host form.
    virtual bool userMode() const = 0;
    // The switch test ("EnableEmpty", "ListCheckValue").
    virtual bool isSet(const QString &name) = 0;

    // The field's value as edited text; the engine writes it after every handled key.
    virtual QString storedText() const = 0;
    virtual void setStoredText(const QString &text) = 0;
    // The matching list row; for a boolean field 0 = true, 1 = false, 2 = empty.
    virtual qint16 listIndex() const = 0;
    virtual void setListIndex(qint16 index) = 0;

    // The field's display formatter (the field itself, not a list column).
    virtual QString displayText(const QString &value) = 0;
    virtual void warningBeep() = 0;
    virtual void reportError(int number, const QString &value) = 0;
    // Focus moves to the next / previous control, taking effect after the current key.
    virtual void sendTab() = 0;
    virtual void sendShiftTab() = 0;
    // Drops the lookup list down.
    virtual void dropDown() = 0;
    // A complete value pasted whole (a date such as 24.12.2005 or 2005-12-24, a number
    // such as "1 234,50"): the edited text it stands for in this field, or a null
    // QString when the text is not such a value for the field's input type.
    virtual QString wholeValueText(const QString &pasted) = 0;
    // The keyboard's Insert toggle, shared by every field.
    virtual bool insertToggled() const = 0;
    virtual void setInsertToggled(bool on) = 0;

    // The field's events; the host may change the arguments.
    virtual void raiseKeyDown(int &keyCode, int &shift) = 0;
    virtual void raiseKeyPress(int &keyAscii) = 0;
    virtual void raiseKeyUp(int &keyCode, int &shift) = 0;
    virtual void raiseArrowAction(int &arrow) = 0;
};

class KeyEngine
{
public:
    KeyEngine(EditHost &host, EditBox &box);

    // Key-down phase of a key in the edit box. On return keyCode is 0 when the key
    // was handled; otherwise the key may reach the edit box itself.
    void keyDown(int &keyCode, int &shift);
    // Character phase of a key typed into the edit box: raises KeyPress, then the entry
    // rule of the input type. keyAscii ends as 0: the box never inserts by itself.
    void keyPress(int &keyAscii);
    void keyUp(int &keyCode, int &shift);
    // Feeds one character as if typed, without raising KeyPress.
    void doKeyPress(int &keyAscii);
    // Text committed by an input method: each character goes through the character phase.
    void commitText(const QString &text);

    // The edit box receives the focus.
    void enterField();
    void changeInsertMode();
    bool insMode() const { return m_insMode; }
    // InsMode Let: stores and shows or hides the overwrite caret.
    void setInsMode(bool on);

    void cutText();
    void pasteText();
    void undo();
    void redo();
    bool canUndo() const;
    bool canRedo() const;
    // Forgets the edit history (the host set a new value).
    void clearHistory();

    // Numeric entry preparation: normalises the leading zeros of the stored text.
    void trimLeadingZeros();

    qint16 selAnchor() const { return m_selAnchor; }

private:
    struct Snapshot
    {
        QString text;
        int selStart = 0;
        int selLength = 0;
    };
    // Records one edit of the field for undo: the outermost scope compares the text
    // before and after.
    struct EditScope
    {
        explicit EditScope(KeyEngine &engine) : engine(engine) { engine.beginEdit(); }
        ~EditScope() { engine.endEdit(); }
        EditScope(const EditScope &) = delete;
        EditScope &operator=(const EditScope &) = delete;
        KeyEngine &engine;
    };
    struct NumPlaces
    {
        int integer = 0;
        int decimal = 0;
    };

    // Key dispatch and caret (KeyDispatch.cpp)
    void dispatchKeyDown(int &keyCode, int &shift);
    void finishKey();
    void doArrowAction(int &keyCode, int &shift);
    void doEnterAction(int &keyCode);
    void showOverwriteCaret();
    void deleteSelection();
    bool realSelection() const;
    bool changeable() const;
    int textLength() const;
    static int takeKey(int *keyObject, int plainKey);
    // Runs the entry rule of the input type; false when the rule refused the key.
    bool entryRule(int *keyObject, int plainKey);
    // Services that a paste holds back until it knows whether it stands.
    void warningBeep();
    void reportError(int number, int value);
    void sendTab();

    // Numeric entry (NumericEntry.cpp)
    bool numKeyPress(int *keyObject, int plainKey);
    void numKeyDown(int &keyCode);
    NumPlaces numPlaces(const QString &candidate) const;
    bool numFull(NumPlaces places) const;
    int checkNumDigits(const QString &candidate);
    bool decimalSeparatorAllowed() const;

    // Date entry (DateEntry.cpp)
    bool dateKeyPress(int *keyObject, int plainKey);
    void dateKeyDown(int &keyCode);
    void skipDateSeparator(int direction);
    bool dateTextValid(const QString &candidate) const;
    bool checkDateText(const QString &candidate);
    void dateAutoTab();

    // Alphanumeric and boolean entry (TextEntry.cpp)
    bool alfaNumKeyPress(int *keyObject, int plainKey);
    void alfaNumKeyDown(int &keyCode);
    bool boolKeyPress(int *keyObject, int plainKey);
    void boolKeyDown(int &keyCode);

    // Cut and paste (Clipboard.cpp)
    bool wholeValueFits(const QString &value) const;
    void pasteCharacters(const QString &text);

    // Edit history (History.cpp)
    Snapshot current() const;
    void restore(const Snapshot &snapshot);
    void beginEdit();
    void endEdit();
    void moveHistory(std::vector<Snapshot> &from, std::vector<Snapshot> &to);

    EditHost &m_host;
    EditBox &m_box;
    bool m_insMode = false;
    qint16 m_selAnchor = 0;
    std::vector<Snapshot> m_undo;
    std::vector<Snapshot> m_redo;
    Snapshot m_beforeEdit;
    int m_editDepth = 0;
    bool m_historyMoved = false;
    bool m_holdBack = false; // a paste is running: tones, messages and Tab wait
    bool m_heldTab = false;
};

} // namespace velmora::detail
