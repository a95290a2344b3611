#pragma once

// The editing engine: key-down dispatch, caret and selection, Enter and arrow
// actions, overwrite caret, cut, paste, undo and the entry rules of the four input
// types. Every edit starts from the edit box's state and the field's settings and ends
// in an EditOutcome: the new box state, the text to store, and what the field must do
// next (report a message, move the focus, drop the list down). The field applies it;
// the engine never calls back into the field except for the two services below.

#include "EditBox.h"
#include "format/ParsedFormat.h"
#include "format/ValueAssignment.h"
#include "format/ValueConversion.h"

#include <velmora/Types.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <optional>
#include <vector>

namespace velmora::detail {

// Legacy key codes and Shift bits of the key events.
namespace key {
constexpr int Backspace = 8, Tab = 9, Enter = 13, ShiftKey = 16, PageUp = 33, PageDown = 34,
              End = 35, Home = 36, Left = 37, Up = 38, Right = 39, Down = 40, Insert = 45,
              Delete = 46, V = 86, X = 88, Y = 89, Z = 90, F1 = 112;
constexpr int ShiftBit = 1, CtrlBit = 2, AltBit = 4;
} // namespace key

// The field's settings as the rules read them. The field builds them for every edit,
// so a host may change them between keys.
struct EditSettings
{
    InpType type = itAlfaNum;
    DisplMode mode = dmChangeable;
    EntAction enterAction = eaTab;
    ArrAction arrowAction = aaUpDownTab;
    ControlLengthConst controlLength = clDecimalPart;
    bool setList = false;
    bool selectText = true;
    bool autoTab = false;
    bool enableEmpty = true; // the EnableEmpty switch as the switch test resolves it
    bool runMode = true; // false while the form is being designed
    qint16 maxLength = 0;
    ValueFormat display; // the field's display formatter; display.parsed is never null

    const ParsedFormat &format() const { return *display.parsed; }
};

// The services the rules use while they work.
class EditServices
{
public:
    virtual ~EditServices() = default;
    virtual void warningBeep() = 0;
    // The keyboard's Insert toggle, shared by every field.
    virtual bool insertToggled() const = 0;
    virtual void setInsertToggled(bool on) = 0;
    virtual QString clipboardText() const = 0;
    virtual void setClipboardText(const QString &text) = 0;
};

enum class FocusMove { None, Next, Previous };

// What one edit did. The field writes the box once, stores the text, then raises and
// does the rest in this order: ArrowAction, the reports, the focus move, the drop-down.
struct EditOutcome
{
    EditState box;
    QString stored; // the field's stored text
    bool textChanged = false;
    std::optional<qint16> listIndex; // a boolean field's new state
    std::optional<int> arrowKey; // ArrowAction is raised for this key
    QList<Report> reports;
    FocusMove move = FocusMove::None;
    bool dropDown = false;
};

class KeyEngine
{
public:
    explicit KeyEngine(EditServices &services);

    // Key-down phase (KeyDown already raised). keyCode ends as 0 when the key was
    // handled; otherwise the key may reach the edit box itself.
    EditOutcome keyDown(const EditSettings &s, const EditState &box, int &keyCode, int &shift);
    // Character phase of one typed character (KeyPress already raised), and DoKeyPress.
    // A code outside 0..0xFFFF counts as the character 0, which every rule refuses.
    EditOutcome keyPress(const EditSettings &s, const EditState &box, int key);
    // Characters that arrive together (an input-method commit) as one edit: each goes
    // through the entry rule as if typed.
    EditOutcome typeText(const EditSettings &s, const EditState &box, QStringView keys);
    EditOutcome cutText(const EditSettings &s, const EditState &box);
    EditOutcome pasteText(const EditSettings &s, const EditState &box);
    EditOutcome undo(const EditSettings &s, const EditState &box);
    EditOutcome redo(const EditSettings &s, const EditState &box);
    bool canUndo() const { return !m_undo.empty(); }
    bool canRedo() const { return !m_redo.empty(); }
    // Forgets the edit history (the host set a new value).
    void clearHistory();

    // The edit box receives the focus: the stored text is shown for editing.
    EditOutcome enterField(const EditSettings &s, const EditState &box, const QString &stored);
    void changeInsertMode(InpType type);
    bool insMode() const { return m_insMode; }
    // InsMode let: stores the mode and shows or hides the overwrite caret.
    EditOutcome setInsMode(const EditSettings &s, const EditState &box, bool on);

    qint16 selAnchor() const { return m_selAnchor; }

    // The numeric entry preparation: leading zeros of a stored text normalised.
    static QString withoutLeadingZeros(const QString &stored);

private:
    // How the numeric rule judged a character.
    enum class Entry { Accepted, Refused, RefusedWithMessage };
    struct NumPlaces
    {
        int integer = 0;
        int decimal = 0;
    };
    // Digits before and after the first decimal separator of a numeric text.
    struct DigitCount
    {
        int integer = 0;
        int decimal = 0;
        int separator = -1; // position of the first decimal separator
    };
    struct Removed // a selection taken out in place, to put back on refusal
    {
        int start = 0;
        QString text;
        int selLength = 0;
    };

    // One edit from start to outcome (KeyDispatch.cpp).
    void begin(const EditSettings &s, const EditState &box);
    EditOutcome end();

    // Key dispatch and caret (KeyDispatch.cpp)
    void dispatchKeyDown(int &keyCode, int &shift);
    void typeKey(char16_t key);
    void doArrowAction(int &keyCode, int &shift);
    void doEnterAction();
    void showOverwriteCaret();
    Removed deleteSelection();
    void putBack(const Removed &removed);
    bool realSelection() const;
    bool changeable() const;
    bool landable() const;
    // Runs the entry rule of the input type; false when the rule refused the key.
    bool entryRule(char16_t key);
    void warningBeep();
    void report(int number, int value);
    void sendTab();

    // Numeric entry (NumericEntry.cpp)
    Entry numKeyPress(char16_t key);
    void numDelete(bool isDelete);
    DigitCount digitCount();
    NumPlaces counted(DigitCount digits) const;
    NumPlaces numPlaces(QStringView candidate) const;
    bool numFull(NumPlaces places) const;
    bool checkNumDigits(NumPlaces places, bool caretAtEnd);
    bool decimalSeparatorAllowed() const;

    // Date entry (DateEntry.cpp)
    bool dateKeyPress(char16_t key);
    void dateDelete(bool isDelete);
    void skipDateSeparator(int direction);
    bool dateTextValid(QStringView candidate) const;
    void dateAutoTab();

    // Alphanumeric and boolean entry (TextEntry.cpp)
    bool alfaNumKeyPress(char16_t key);
    void alfaNumDelete(bool isDelete);
    QString shown(const QString &text) const;
    bool plainDisplay() const;
    std::optional<bool> caseOnlyUpper() const;
    bool renderInPlace(int start, int removed, char16_t key);
    void rendered(int characters, int from, int to);
    std::pair<int, int> patternPart(int characters) const;
    bool mapCase(int from, int to, bool upper, int floor);
    bool boolKeyPress(char16_t key);
    void boolDelete();

    // Cut and paste (Clipboard.cpp)
    void cut();
    void paste(QString pasted);
    bool wholeValueFits(const QString &value);
    void pasteCharacters(QStringView text);
    void typeCharacters(QStringView keys);

    // Edit history (History.cpp)
    void moveHistory(std::vector<EditState> &from, std::vector<EditState> &to);

    EditServices &m_services;
    const EditSettings *m_s = nullptr; // the settings of the edit under way
    EditBox m_box;
    EditOutcome m_out;
    EditState m_before;
    bool m_historyMoved = false;
    bool m_filterStored = false; // a numeric cut stores only what a number is made of
    bool m_insMode = false;
    qint16 m_selAnchor = 0;
    std::vector<EditState> m_undo;
    std::vector<EditState> m_redo;
    bool m_holdBack = false; // characters typed together: tones, messages and Tab wait
    bool m_heldTab = false;
    bool m_collapse = false; // characters typed in one burst: one tone, each message once
    bool m_toneHeld = false;
    // The digit count of the numeric text, valid while the box's version stands.
    DigitCount m_digits;
    quint64 m_digitsVersion = ~quint64(0);
    // While characters come in one burst into a field with a string pattern: the box is
    // the pattern's rendering of a text of this many characters (no surrogates in it)
    // as long as the box's version stands.
    int m_renderedFrom = 0;
    std::pair<int, int> m_renderedPart; // where the pattern's part of the box lies
    quint64 m_renderedVersion = ~quint64(0);
};

} // namespace velmora::detail
