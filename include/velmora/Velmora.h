#pragma once

#include <velmora/DatabaseError.h>
#include <velmora/FieldFont.h>
#include <velmora/Global.h>
#include <velmora/PropertyBag.h>
#include <velmora/Types.h>

#include <QtCore/QVariant>
#include <QtWidgets/QWidget>

#include <functional>
#include <memory>

class QSqlQuery;

/// @file
/// The data-entry field velmora::Velmora.

namespace velmora {

class VelmoraPrivate;

/// A formatted data-entry field for database forms. It edits an alphanumeric, numeric,
/// date or boolean value keystroke by keystroke against its format, keeps the value as
/// edited text and hands it out as text (Value), typed value (varValue), display text
/// (FormValue), SQL literal (SQLValue) and plain number (PrecValue). With SetList it
/// carries a lookup list whose rows come from SQL, a host's query or AddItem.
///
/// Errors never reach the host as exceptions (the one exception is
/// velmora::DatabaseError from InitList and InitListAll): a failure sets Error to a
/// message number, raises the Error signal and, while Messages is true, shows a message
/// box through velmora::Platform.
///
/// Every property is a Q_PROPERTY under its own name, so `setProperty("FormatStr",
/// "dd/mm/yyyy")` works too; setting a stored property raises PropertyChanged with its
/// name. The 16-bit properties (MaxLength, Group, the list columns, RefreshInt, the
/// selection, Error) are declared as int so that form designers can edit and save them;
/// their accessors keep qint16, and a value outside its range is cut to 16 bits.
/// Texts that enter the field (values, formats, labels, list settings) are made
/// well formed (a lone surrogate becomes U+FFFD, control characters but tab are
/// removed) and cut to 32767 characters.
///
/// Group operations (DoValidateAll, ControlAll, ClearAll, ChangeConnectAll,
/// InitListAll, FormCheckValues, FormChanged) walk the fields of this field's Group on
/// its form, this one included, in the order they were created. The form is the nearest
/// ancestor that is a window, carries the dynamic property "VelmoraForm" set to true, or
/// is an instance of an application class (not one of Qt's own) without "VelmoraForm"
/// set to false; so group boxes, tab pages and scroll areas are part of the form around
/// them. A field without a form is a group of its own.
///
/// Run mode and design mode: the field asks the nearest ancestor that carries the
/// dynamic property "UserMode" (a bool); without one it is in run mode. In design mode
/// assigning a format or a separator only stores it.
class VELMORA_EXPORT Velmora : public QWidget
{
    Q_OBJECT
    /// Write-only: sets CheckValues of every field of this field's Group on its form (a
    /// group operation). Reads as false.
    Q_PROPERTY(bool FormCheckValues READ FormCheckValuesUnreadable WRITE setFormCheckValues)
    /// The master switch of the checks; default true. Off, the list check is off and empty
    /// values pass, whatever ListCheckValue and EnableEmpty say.
    Q_PROPERTY(bool CheckValues READ CheckValues WRITE setCheckValues)
    /// Read-only: whether the value is a row of the list, the new-item row not counted.
    /// Always false without SetList and in a boolean field.
    Q_PROPERTY(bool ListItemSelected READ ListItemSelected)
    /// The caption of the new-item row (ListAddNewItem); "" shows "<NOVÝ>".
    Q_PROPERTY(QString ListNewItemText READ ListNewItemText WRITE setListNewItemText)
    /// Whether the list window offers a new-item row at its top; choosing it raises
    /// ListNewItem. Default false; a boolean field has no such row.
    Q_PROPERTY(bool ListAddNewItem READ ListAddNewItem WRITE setListAddNewItem)
    /// Read-only: rows of the list window, the new-item row included; 0 before the first
    /// load.
    Q_PROPERTY(qint32 ListCount READ ListCount)
    /// Read-only: whether the list window is open; false before the first load.
    Q_PROPERTY(bool ListVisible READ ListVisible)
    /// The value typed. Empty is an invalid QVariant, Null is QVariant::fromValue(nullptr)
    /// (an empty value of a Nullable field); numbers are double (qint16 0 for an empty
    /// non-nullable number), dates QDate, truth values bool, or as the boolean format's
    /// database letter says ("N" a number, "A" the text); an empty text of a non-nullable
    /// text field is "". A date that is no calendar date is Empty. A value taken from the
    /// list is typed by the type of the list's value column. Setting it writes the variant
    /// as text of the input type and assigns that as Value does.
    Q_PROPERTY(QVariant varValue READ varValue WRITE setvarValue)
    /// Whether a visible or crossed-out field (dmVisible, dmCrossline) shows its value in a
    /// label instead of the read-only edit box. True for a new field.
    Q_PROPERTY(bool VisibleByLbl READ VisibleByLbl WRITE setVisibleByLbl)
    /// Whether the value must be a row of the list (with SetList and CheckValues); default
    /// true. An assigned value in no row is then refused with message 1 (the field keeps
    /// what it showed), and the exit check fails with code 1 (message 10). Off, a value in
    /// no row is taken as typed and ListOK is false.
    Q_PROPERTY(bool ListCheckValue READ ListCheckValue WRITE setListCheckValue)
    /// Read-only: the field's own window handle, truncated to 32 bits (0 before it has
    /// one).
    Q_PROPERTY(qint32 hwnd READ hwnd)
    /// Whether entering a changeable field selects its whole text; default true. Off, the
    /// caret goes to the start.
    Q_PROPERTY(bool SelectText READ SelectText WRITE setSelectText)
    /// Overwrite mode: true when typing overwrites (the character after the caret is shown
    /// selected, the overwrite caret), false when it inserts; default false. A date field
    /// is always in overwrite mode. Entering a field takes the mode from
    /// Platform::insertToggled(), and the Insert key switches it. Setting it shows or hides
    /// the overwrite caret.
    Q_PROPERTY(bool InsMode READ InsMode WRITE setInsMode)
    /// How old, in whole minutes, a list loaded from SQLList may be before the drop-down
    /// reloads it: 0 (the default) never reloads, -1 reloads at every drop-down, n reloads
    /// a list more than n minutes old. The clock is Platform::now(). Lists from a host's
    /// query or from AddItem are never reloaded.
    Q_PROPERTY(int RefreshInt READ RefreshInt WRITE setRefreshInt)
    /// Which blanks a text value loses when it is assigned and read; default atLeftRight.
    /// Only text fields trim.
    Q_PROPERTY(velmora::AlfaNumTrim AlfaNumTrim READ AlfaNumTrim WRITE setAlfaNumTrim)
    /// Whether failures are shown in a message box through Platform::messageBox, titled
    /// Label; default true. Off, only the Error property and signal report them, and
    /// DoValidate lets the ValidateEx handler decide.
    Q_PROPERTY(bool Messages READ Messages WRITE setMessages)
    /// The number of the last message, 0 for none; a format assignment and DoValidate reset
    /// it to 0 first. Setting it only stores the number. The messages (Czech texts, with
    /// the value where one is quoted): 1 invalid value, also a value in no row of the list;
    /// 2, 7 and 12 invalid date; 3 invalid number format; 4 invalid text format; 5 invalid
    /// date format; 6 and 11 invalid number; 8 and 9 more places after or before the
    /// decimal separator than the format allows; 10 not in the list; 13 the field must not
    /// be empty; 14 more characters than MaxLength.
    Q_PROPERTY(int Error READ Error WRITE setError)
    /// The title of the field's message boxes; default "".
    Q_PROPERTY(QString Label READ Label WRITE setLabel)
    /// Whether the warning tone sounds, Platform::beep(400, 150), with messages and refused
    /// edits; default true.
    Q_PROPERTY(bool Crrr READ Crrr WRITE setCrrr)
    /// Read-only: the selected text of the edit box.
    Q_PROPERTY(QString SelText READ SelText)
    /// The length of the selection in UTF-16 units. Setting it selects from SelStart, cut
    /// to the end of the text; 0 leaves the caret at SelStart.
    Q_PROPERTY(int SelLength READ SelLength WRITE setSelLength)
    /// The caret, or the start of the selection: a 0-based UTF-16 position. Setting it
    /// moves the caret there (clamped to the text) and drops the selection.
    Q_PROPERTY(int SelStart READ SelStart WRITE setSelStart)
    /// Whether an empty value passes the exit check; default true (and empty always passes
    /// with CheckValues off). Off, the check fails with code 4 (message 13). In a boolean
    /// field Backspace and Delete empty the field only with it, and its list gets an empty
    /// row.
    Q_PROPERTY(bool EnableEmpty READ EnableEmpty WRITE setEnableEmpty)
    /// The list columns that are loaded but not shown: 0-based indexes separated by ";"
    /// ("0;2"). Hidden columns take no width in the window.
    Q_PROPERTY(QString HideCol READ HideCol WRITE setHideCol)
    /// The 0-based list column that gives the field's value; default 0.
    Q_PROPERTY(int ValueCol READ ValueCol WRITE setValueCol)
    /// The 0-based list column whose cell the field shows for its value; default 0. It
    /// takes the field's own type and format.
    Q_PROPERTY(int TextCol READ TextCol WRITE setTextCol)
    /// The 0-based list column that letters typed in the open list search; -1 (the default)
    /// for no search.
    Q_PROPERTY(int MatchCol READ MatchCol WRITE setMatchCol)
    /// Type and format of each list column: parts separated by "|" describe columns 0, 1,
    /// 2, ...; a part is a type letter (A, N, D or B; anything else means A) followed by
    /// the column's format ("N#,##0.00|A|Ddd.mm.yyyy"). An empty part leaves its column at
    /// the defaults.
    Q_PROPERTY(QString ListFormatString READ ListFormatString WRITE setListFormatString)
    /// The connection the list is loaded over: key=value pairs separated by ";" with keys
    /// in any case ("Driver=QSQLITE;Database=orders.db",
    /// "Driver=QPSQL;Host=127.0.0.1;Port=5432;Database=shop;User=u;Password=p",
    /// "Driver=QODBC;DSN=shop"). "" uses the application's default connection.
    Q_PROPERTY(QString SQLConnect READ SQLConnect WRITE setSQLConnect)
    /// The number of the field's group: the group operations act on the fields of the form
    /// with the same Group; default 0.
    Q_PROPERTY(int Group READ Group WRITE setGroup)
    /// The query whose rows fill the list (InitList without a query of the host's).
    Q_PROPERTY(QString SQLList READ SQLList WRITE setSQLList)
    /// The frame around the field; default fmSpecialEffectSunken.
    Q_PROPERTY(velmora::SpecialEffectConst SpecialEffect READ SpecialEffect WRITE setSpecialEffect)
    /// Whether the field has a lookup list, with a drop-down button; default false.
    Q_PROPERTY(bool SetList READ SetList WRITE setSetList)
    /// Whether the focus moves on by itself when the entry is full: a text at MaxLength, a
    /// number when its last place is typed at the end, a date when its last digit is typed;
    /// default false.
    Q_PROPERTY(bool AutoTab READ AutoTab WRITE setAutoTab)
    /// The most characters of a text field; 0 (the default) for no limit. A key past it is
    /// refused with message 14.
    Q_PROPERTY(int MaxLength READ MaxLength WRITE setMaxLength)
    /// Which digit places of a number field its format limits while typing; default
    /// clDecimalPart. Setting it assigns the value again.
    Q_PROPERTY(velmora::ControlLengthConst ControlLength READ ControlLength WRITE setControlLength)
    /// The decimal separator of a number field; only the first character counts (a
    /// character outside the Windows-1250 code page is stored as "?"), "" (the default)
    /// means the regional one. In run mode setting it parses the format again and assigns
    /// the value again; a value that does not fit brings the previous separator back.
    Q_PROPERTY(QString FormatDesOddel READ FormatDesOddel WRITE setFormatDesOddel)
    /// The thousands separator of a number field; as FormatDesOddel.
    Q_PROPERTY(QString FormatTisOddel READ FormatTisOddel WRITE setFormatTisOddel)
    /// The date separator of a date field; as FormatDesOddel. A half-typed date keeps its
    /// typed parts.
    Q_PROPERTY(QString FormatDatOddel READ FormatDatOddel WRITE setFormatDatOddel)
    /// Horizontal alignment of the value in the edit box and the label; default
    /// vbLeftJustify.
    Q_PROPERTY(velmora::AlignConst Alignment READ Alignment WRITE setAlignment)
    /// What the field edits: text, number, date or boolean; default itAlfaNum. In run mode
    /// assigning it empties the field, starts from the type's default format (FormatStr
    /// becomes "") and assigns the value again; a value that does not fit brings the
    /// previous type back. It also sets Nullable (true for a date), in design mode too; there
    /// the type is otherwise only stored.
    Q_PROPERTY(velmora::InpType InputType READ InputType WRITE setInputType)
    /// Whether an empty value reads as Null in varValue, rather than as Empty, "" or 0.
    /// Default false; assigning InputType sets it: true for a date, false for the other
    /// types. Declared after InputType: a form loader applies properties in this order.
    Q_PROPERTY(bool Nullable READ Nullable WRITE setNullable)
    /// What Enter does; default eaTab.
    Q_PROPERTY(velmora::EntAction EnterAction READ EnterAction WRITE setEnterAction)
    /// Which arrow keys move the focus out of the field; default aaUpDownTab.
    Q_PROPERTY(velmora::ArrAction ArrowAction READ ArrowAction WRITE setArrowAction)
    /// The font of the text: the field follows every later change of the font object it is
    /// given. Never null: when the host's object is destroyed the field keeps a copy of it.
    Q_PROPERTY(velmora::FieldFont *Font READ Font WRITE setFont)
    /// The font of the list window, followed as Font is.
    Q_PROPERTY(velmora::FieldFont *ListFont READ ListFont WRITE setListFont)
    /// The back colour of the edit box in the legacy encoding (0x00BBGGRR; 0x80000000 + n =
    /// system colour n); default 0x80000005, the window colour. It is also the colour the
    /// field returns to after its focus highlight.
    Q_PROPERTY(quint32 BackColor READ BackColor WRITE setBackColor)
    /// The back colour of the list window; default 0x80000005.
    Q_PROPERTY(quint32 ListBackColor READ ListBackColor WRITE setListBackColor)
    /// The text colour of the edit box and the label; default 0x80000008, the window text
    /// colour.
    Q_PROPERTY(quint32 ForeColor READ ForeColor WRITE setForeColor)
    /// The text colour of the list window; default 0x80000008.
    Q_PROPERTY(quint32 ListForeColor READ ListForeColor WRITE setListForeColor)
    /// How the field shows its value and whether it can be edited; default dmChangeable.
    Q_PROPERTY(velmora::DisplMode DisplayMode READ DisplayMode WRITE setDisplayMode)
    /// The format of the input type: a number pattern ("#,##0.00"), a date pattern
    /// ("dd/mm/yyyy", the default of a date field), a string pattern ("@@@-@@@", ">" for
    /// upper case) or a boolean format "true text;false text;database letter" ("ANO;NE;A"
    /// by default; the letter B gives True/False, N -1/0, A A/N). In run mode setting it
    /// parses the format and assigns the value again: an unusable format (message 3, 4 or
    /// 5) or a value that does not fit the new format (the value's message) leaves the
    /// previous format in force. In design mode it is only stored.
    Q_PROPERTY(QString FormatStr READ FormatStr WRITE setFormatStr)
    /// The value as text: a date in the regional short form, a number with the regional
    /// decimal separator, a boolean in its database form ("True"/"-1"/"A"), a text with
    /// AlfaNumTrim applied; with a list, the value cell of the row that holds it. Setting
    /// it shows the value through the format (a text cut to MaxLength) and raises
    /// ValueChanged when the typed value changed; "" empties the field. A text that is no
    /// number or no date is reported (message 6 or 7) but taken all the same. Refused with
    /// message 1, the field keeping what it showed: with a list and ListCheckValue, a value
    /// in no row; in a boolean field, "" without EnableEmpty.
    Q_PROPERTY(QString Value READ Value WRITE setValue USER true)
    /// Read-only: the text shown in the edit box.
    Q_PROPERTY(QString FormValue READ FormValue)
    /// Read-only: the value as an SQL literal without enclosing quotes: a text is Value
    /// with every "'" doubled (texts entering a field are made well formed, so the literal
    /// is safe for any input), a date mm/dd/yyyy ("" unless it is a calendar date), a
    /// number with "." as decimal point and no grouping ("" unless it is a number), a
    /// boolean True/False, -1/0 or A/N. With a list, the value cell of the matching row, or
    /// "" when no row holds the value.
    Q_PROPERTY(QString SQLValue READ SQLValue)
    /// Read-only: a numeric value as a plain number with "." as decimal point: the number
    /// as assigned, kept whole whatever the format shows, or as the user has edited it; ""
    /// for an empty value and for other types. With a list, the value cell when the value
    /// column is numeric.
    Q_PROPERTY(QString PrecValue READ PrecValue)
    /// Whether a field of this field's Group on its form has changed (a group operation):
    /// true as soon as one member reports Changed, the rest are not asked. Setting it sets
    /// Changed of every member.
    Q_PROPERTY(bool FormChanged READ FormChanged WRITE setFormChanged)
    /// Whether the value differs from its baseline, compared as typed value and as list
    /// row. The baseline is taken when the field is cleared (Clear, a new InputType,
    /// loading its settings) and when Changed is set false. Once true, it stays true until
    /// it is set false.
    Q_PROPERTY(bool Changed READ Changed WRITE setChanged)
    /// Read-only: false only for a field with a list whose value is in no row of it.
    Q_PROPERTY(bool ListOK READ ListOK)

public:
    /// A new field in the settings of InitProperties, empty, with its default format
    /// parsed (in run mode). Raises Initialize before it returns: a host that wants to
    /// see it installs a creation hook, which every new field calls first, and connects
    /// there.
    explicit Velmora(QWidget *parent = nullptr);
    /// Releases the list (rows, columns and window), then raises Terminate.
    ~Velmora() override;
    /// A function that every new field calls first in its constructor, before
    /// Initialize is raised.
    using CreationHook = std::function<void(Velmora *field)>;
    /// Installs @p hook for all fields created from now on (an empty one removes it)
    /// and returns the one it replaces.
    static CreationHook setCreationHook(CreationHook hook);

    // --- Value -----------------------------------------------------------------------
    /// @{
    /// Reads and sets #Value, the value as text.
    QString Value() const;
    void setValue(const QString &value);
    /// @}
    /// @{
    /// Reads and sets #varValue, the typed value.
    QVariant varValue() const;
    void setvarValue(const QVariant &value);
    /// @}
    /// The text shown in the edit box (#FormValue).
    QString FormValue() const;
    /// The value as an SQL literal without enclosing quotes (#SQLValue).
    QString SQLValue() const;
    /// A numeric value as a plain number with "." as decimal point (#PrecValue).
    QString PrecValue() const;
    /// Takes the text @p sRet into the edit box as it is, normalised for the input type
    /// and cut to MaxLength, and returns the new edited text. It is never refused: a
    /// text that is no number or no date is reported (message 6 or 7) and kept. Returns
    /// an invalid QVariant when a handler deleted the field meanwhile.
    QVariant LetValue(const QString &sRet);
    /// Empties the field (a date shows its empty layout) and takes the empty state as
    /// the new baseline of Changed. Raises Change when the shown text changes.
    Q_INVOKABLE void Clear();
    /// @{
    /// Reads and sets #Changed.
    bool Changed();
    void setChanged(bool changed);
    /// @}

    // --- Format ----------------------------------------------------------------------
    /// @{
    /// Reads and sets #InputType.
    velmora::InpType InputType() const;
    void setInputType(velmora::InpType type);
    /// @}
    /// @{
    /// Reads and sets #FormatStr.
    QString FormatStr() const;
    void setFormatStr(const QString &format);
    /// @}
    /// @{
    /// Reads and sets #FormatDesOddel. Separators: only the first character counts;
    /// "" means the regional one.
    QString FormatDesOddel() const;
    void setFormatDesOddel(const QString &separator);
    /// @}
    /// @{
    /// Reads and sets #FormatTisOddel.
    QString FormatTisOddel() const;
    void setFormatTisOddel(const QString &separator);
    /// @}
    /// @{
    /// Reads and sets #FormatDatOddel.
    QString FormatDatOddel() const;
    void setFormatDatOddel(const QString &separator);
    /// @}
    /// @{
    /// Reads and sets #ControlLength.
    velmora::ControlLengthConst ControlLength() const;
    void setControlLength(velmora::ControlLengthConst length);
    /// @}
    /// @{
    /// Reads and sets #MaxLength.
    qint16 MaxLength() const;
    void setMaxLength(qint16 length);
    /// @}
    /// @{
    /// Reads and sets #AlfaNumTrim.
    velmora::AlfaNumTrim AlfaNumTrim() const;
    void setAlfaNumTrim(velmora::AlfaNumTrim trim);
    /// @}
    /// @{
    /// Reads and sets #Nullable.
    bool Nullable() const;
    void setNullable(bool nullable);
    /// @}

    // --- Behaviour -------------------------------------------------------------------
    /// @{
    /// Reads and sets #EnterAction.
    velmora::EntAction EnterAction() const;
    void setEnterAction(velmora::EntAction action);
    /// @}
    /// @{
    /// Reads and sets #ArrowAction (the property; the signal of the same name reports
    /// an arrow key).
    velmora::ArrAction ArrowAction() const;
    void setArrowAction(velmora::ArrAction action);
    /// @}
    /// @{
    /// Reads and sets #DisplayMode.
    velmora::DisplMode DisplayMode() const;
    void setDisplayMode(velmora::DisplMode mode);
    /// @}
    /// @{
    /// Reads and sets #AutoTab.
    bool AutoTab() const;
    void setAutoTab(bool on);
    /// @}
    /// @{
    /// Reads and sets #SelectText.
    bool SelectText() const;
    void setSelectText(bool on);
    /// @}
    /// @{
    /// Reads and sets #InsMode (true: overwrite).
    bool InsMode() const;
    void setInsMode(bool on);
    /// @}
    /// @{
    /// Reads and sets #RefreshInt, in minutes.
    qint16 RefreshInt() const;
    void setRefreshInt(qint16 interval);
    /// @}
    /// @{
    /// Reads and sets #Group.
    qint16 Group() const;
    void setGroup(qint16 group);
    /// @}

    // --- Editing ---------------------------------------------------------------------
    /// The selected text (#SelText).
    QString SelText() const;
    /// @{
    /// Reads and sets #SelStart, a 0-based position.
    qint16 SelStart() const;
    void setSelStart(qint16 start);
    /// @}
    /// @{
    /// Reads and sets #SelLength.
    qint16 SelLength() const;
    void setSelLength(qint16 length);
    /// @}
    /// Feeds one character as if typed, without raising KeyPress. Codes are UTF-16
    /// units; a lone surrogate types U+FFFD. The character goes through the entry rule
    /// of the input type as a typed one does (messages, tone, AutoTab).
    void DoKeyPress(qint16 &KeyAscii);
    /// Switches between insert and overwrite as the Insert key does, without moving the
    /// caret and without touching the keyboard's toggle; a date field stays in
    /// overwrite mode.
    void ChangeInsertMode();

    // --- Checks and messages ---------------------------------------------------------
    /// @{
    /// Reads and sets #CheckValues.
    bool CheckValues() const;
    void setCheckValues(bool on);
    /// @}
    /// @{
    /// Reads and sets #ListCheckValue.
    bool ListCheckValue() const;
    void setListCheckValue(bool on);
    /// @}
    /// @{
    /// Reads and sets #EnableEmpty.
    bool EnableEmpty() const;
    void setEnableEmpty(bool on);
    /// @}
    /// @{
    /// Reads and sets #Messages.
    bool Messages() const;
    void setMessages(bool on);
    /// @}
    /// @{
    /// Reads and sets #Crrr, the warning tone.
    bool Crrr() const;
    void setCrrr(bool on);
    /// @}
    /// @{
    /// Reads and sets #Label, the title of message boxes.
    QString Label() const;
    void setLabel(const QString &label);
    /// @}
    /// @{
    /// Reads and sets #Error, the number of the last message.
    qint16 Error() const;
    void setError(qint16 number);
    /// @}
    /// Shows a message of the host like a field message: the tone (with Crrr), a box
    /// titled Label, then the focus back into the field. Nothing happens while the
    /// field's window is not visible. Error is not changed.
    void Msg(QString &sText);
    /// The exit check: whether the value @p sVal may be accepted. 0 accepted, 1 not a
    /// row of the list, 2 invalid number, 3 invalid date, 4 empty value not allowed.
    /// Fields that cannot be edited always pass. Reports nothing.
    qint16 VystupniKontrola(const QString &sVal);
    /// Reports a result @p nNumber of VystupniKontrola as the field's message (10 to
    /// 13: message 11 quotes @p sValue, message 12 the stored text); 0 reports nothing.
    void VystupniKontrolaMsg(qint16 &nNumber, QString &sValue);
    /// Completes the typed entry (a date that cannot be completed is message 2), runs
    /// the exit check and reports a failure; then, when it passed or Messages is off,
    /// raises ValidateEx, whose Cancel has the last word. On failure the focus goes
    /// into the field. Runs by itself when the focus leaves the field for another
    /// widget of its window. Returns whether the value was accepted.
    bool DoValidate();

    // --- Group operations ------------------------------------------------------------
    // Each one walks the fields of this field's Group on its form, this one included, in
    // the order they were created. The form is the nearest ancestor that is a window,
    // carries the dynamic property "VelmoraForm" set to true, or is an instance of an
    // application class (not one of Qt's own) without "VelmoraForm" set to false; so
    // group boxes, tab pages and scroll areas are part of the form around them.

    /// DoValidate on every changeable member of the group, stopping at the first that
    /// fails; returns whether all passed.
    bool DoValidateAll();
    /// VystupniKontrola on every member of the group; stops at the first changeable
    /// member that fails, shows its message and returns false; else true.
    QVariant ControlAll();
    /// Clear on every member of the group.
    void ClearAll();
    /// Stores @p sConnect as this field's SQLConnect and gives it to every member of
    /// the group whose SQLConnect is empty.
    void ChangeConnectAll(QString &sConnect);
    /// InitList on every member of the group with SetList. All of them load; the first
    /// velmora::DatabaseError is thrown after the last one.
    void InitListAll();
    /// Sets CheckValues of every member of the group (#FormCheckValues); it cannot be
    /// read.
    void setFormCheckValues(bool on);
    /// @{
    /// Reads and sets #FormChanged: true as soon as one member of the group reports
    /// Changed, the rest are not asked; setting it sets Changed of every member.
    bool FormChanged();
    void setFormChanged(bool changed);
    /// @}

    // --- Lookup list -----------------------------------------------------------------
    /// @{
    /// Reads and sets #SetList.
    bool SetList() const;
    void setSetList(bool on);
    /// @}
    /// @{
    /// Reads and sets #SQLConnect.
    QString SQLConnect() const;
    void setSQLConnect(const QString &connect);
    /// @}
    /// @{
    /// Reads and sets #SQLList.
    QString SQLList() const;
    void setSQLList(const QString &sql);
    /// @}
    /// @{
    /// Reads and sets #ListFormatString.
    QString ListFormatString() const;
    void setListFormatString(const QString &format);
    /// @}
    /// @{
    /// Reads and sets #HideCol.
    QString HideCol() const;
    void setHideCol(const QString &columns);
    /// @}
    /// @{
    /// Reads and sets #ValueCol.
    qint16 ValueCol() const;
    void setValueCol(qint16 column);
    /// @}
    /// @{
    /// Reads and sets #TextCol.
    qint16 TextCol() const;
    void setTextCol(qint16 column);
    /// @}
    /// @{
    /// Reads and sets #MatchCol.
    qint16 MatchCol() const;
    void setMatchCol(qint16 column);
    /// @}
    /// @{
    /// Reads and sets #ListAddNewItem.
    bool ListAddNewItem() const;
    void setListAddNewItem(bool on);
    /// @}
    /// @{
    /// Reads and sets #ListNewItemText.
    QString ListNewItemText() const;
    void setListNewItemText(const QString &text);
    /// @}
    /// Rows of the list window, the new-item row included; 0 before the first load.
    qint32 ListCount() const;
    /// Whether the list window is open; false before the first load.
    bool ListVisible() const;
    /// Whether the value is a row of the list (#ListItemSelected).
    bool ListItemSelected() const;
    /// False only for a field with a list whose value is in no row of it.
    bool ListOK() const;
    /// The cell in column @p nSl (0-based) of the row that holds the value; "" without
    /// a list window, without such a row, or for a column the list does not have.
    Q_INVOKABLE QString GetSelectedElem(qint16 nSl) const;
    /// Loads the list, synchronously: from @p Rs when given (a host's active query, read
    /// forward from where it stands to its end and left there), else from SQLList over
    /// SQLConnect (a connection of the field's own, closed again; an empty SQLConnect
    /// uses QSqlDatabase::database()), else from the rows given to AddItem, and for a
    /// boolean field from its two texts. Throws velmora::DatabaseError when the
    /// connection string is unusable, the connection fails or the query fails (also part
    /// way); the list is then empty and the field stays usable. docs/lookup.md says how
    /// to keep a window responsive around a large load.
    void InitList(QSqlQuery *Rs = nullptr);
    /// Adds a row (cells separated by tabs) for the next InitList without a query; the
    /// first row after a load fixes the number of columns. Nothing without SetList.
    void AddItem(QString &sRet);

    // --- Appearance ------------------------------------------------------------------
    /// @{
    /// Reads and sets #Alignment.
    velmora::AlignConst Alignment() const;
    void setAlignment(velmora::AlignConst alignment);
    /// @}
    /// @{
    /// Reads and sets #SpecialEffect.
    velmora::SpecialEffectConst SpecialEffect() const;
    void setSpecialEffect(velmora::SpecialEffectConst effect);
    /// @}
    /// @{
    /// Reads and sets #VisibleByLbl.
    bool VisibleByLbl() const;
    void setVisibleByLbl(bool on);
    /// @}
    /// @{
    /// Reads and sets #Font, the text font: the field follows every later change of the
    /// font object it is given. Never null: when the host's object is destroyed the
    /// field keeps a copy of it.
    velmora::FieldFont *Font() const;
    void setFont(velmora::FieldFont *font);
    /// @}
    using QWidget::setFont;
    /// @{
    /// Reads and sets #ListFont, followed as Font is.
    velmora::FieldFont *ListFont() const;
    void setListFont(velmora::FieldFont *font);
    /// @}
    /// @{
    /// Reads and sets #BackColor. Colours are in the legacy encoding (0x00BBGGRR;
    /// 0x80000000 + n = system colour n).
    quint32 BackColor() const;
    void setBackColor(quint32 color);
    /// @}
    /// @{
    /// Reads and sets #ForeColor.
    quint32 ForeColor() const;
    void setForeColor(quint32 color);
    /// @}
    /// @{
    /// Reads and sets #ListBackColor.
    quint32 ListBackColor() const;
    void setListBackColor(quint32 color);
    /// @}
    /// @{
    /// Reads and sets #ListForeColor.
    quint32 ListForeColor() const;
    void setListForeColor(quint32 color);
    /// @}
    /// The field's own window handle, truncated to 32 bits (0 before it has one).
    qint32 hwnd() const;

    // --- Persistence -----------------------------------------------------------------
    /// A field placed new on a form: the settings a new field starts with. A field is
    /// already in this state when constructed. The value is kept.
    Q_INVOKABLE void InitProperties();
    /// Loads the saved settings from @p PropBag: members are written directly, so no
    /// PropertyChanged is raised and no setter's follow-up runs; a missing key gives its
    /// default. The format of the loaded type is then parsed without messages. The field
    /// ends empty (its empty mask shown) with Changed false. docs/persistence.md lists
    /// the keys.
    void ReadProperties(velmora::PropertyBag &PropBag);
    /// Saves the settings into @p PropBag, always the same keys in the same order; a
    /// value equal to its key's default is left out by the bag. Changes nothing.
    void WriteProperties(velmora::PropertyBag &PropBag);

    /// Room for the edit box and, with SetList, the list button, plus the frame.
    QSize sizeHint() const override;

Q_SIGNALS:
    /// The value moved to another row of the list: raised when a row is chosen in the
    /// list window, a value is assigned or the field is left, each time the row differs
    /// from the one last reported (a value in no row raises nothing).
    void ListChanged();
    /// The left mouse button was released inside the edit box (after MouseUp).
    void TxtBoxClick();
    /// The edit box was double-clicked. Unless the handler sets @p Cancel, a field with
    /// SetList drops its list down and another selects the word.
    void TxtBoxDblClick(bool &Cancel);
    /// The list button was clicked; the list drops down after the handler returns.
    void ButtonClick();
    /// Declared for hosts written against the whole interface; never raised.
    void ButtonDblClick(bool &Cancel);
    /// The text shown in the edit box changed, by a key, a paste, a cut, undo, an
    /// assignment, Clear or a row of the list. Raised once per change, never for a
    /// refused key. A handler that assigns a value or a format has the last word: the
    /// rest of the edit is dropped.
    void Change();
    /// A key went down in the edit box: @p KeyCode is the legacy key code (8 Backspace,
    /// 13 Enter, 37-40 arrows, 45 Insert, 46 Delete, ...), @p Shift the modifier mask
    /// (1 Shift, 2 Ctrl, 4 Alt). The handler may change both; 0 as KeyCode swallows
    /// the key. Tab, Shift+Tab and Esc are the form's and are not reported.
    void KeyDown(qint16 &KeyCode, qint16 &Shift);
    /// A character was typed, as a UTF-16 unit in @p KeyAscii; the handler may change it
    /// (0 is refused by every entry rule). Raised for each character of an input-method
    /// commit; not for DoKeyPress.
    void KeyPress(qint16 &KeyAscii);
    /// A key went up in the edit box; codes as in KeyDown. Nothing the handler changes
    /// is read back.
    void KeyUp(qint16 &KeyCode, qint16 &Shift);
    /// A mouse button was released over the edit box. @p Button is the mask of buttons
    /// (1 left, 2 right, 4 middle), @p Shift the modifier mask, @p X and @p Y the
    /// position in the edit box in pixels. Nothing the handler changes is read back.
    void MouseUp(qint16 &Button, qint16 &Shift, float &X, float &Y);
    /// A mouse button went down over the edit box; arguments as in MouseUp.
    void MouseDown(qint16 &Button, qint16 &Shift, float &X, float &Y);
    /// The mouse moved over the edit box; arguments as in MouseUp (Button: the buttons
    /// held).
    void MouseMove(qint16 &Button, qint16 &Shift, float &X, float &Y);
    /// The field is being destroyed; raised last by the destructor, after the list has
    /// been released.
    void Terminate();
    /// The field was shown.
    void Show();
    /// The field was hidden.
    void Hide();
    /// The field was created; raised by the constructor, before any property is set.
    /// Only a handler connected in a creation hook (setCreationHook) receives it.
    void Initialize();
    /// An arrow key ran the arrow action (Up or Down, or Left or Right at the edge of
    /// the text); @p Arrow is its key code (37 to 40). Raised before the focus moves as
    /// the #ArrowAction property says; the value the handler leaves is not read back.
    void ArrowAction(qint16 &Arrow);
    /// A message is reported: @p Error is its number (also in the #Error property),
    /// @p ErrMsg its text. Raised before the message box, and also while Messages is
    /// off.
    void Error(qint16 &Error, QString &ErrMsg);
    /// A row was chosen in the list window (after ListChanged, when that is due).
    void ListSel();
    /// The last word of DoValidate, raised when the check passed or Messages is off:
    /// setting @p Cancel refuses the value (the focus returns to the field).
    void ValidateEx(bool &Cancel);
    /// The new-item row was chosen: the handler puts the new row into @p sItem (cells
    /// separated by tabs), which is added at the end of the list; "" adds nothing. A row
    /// with the wrong number of cells is refused with a message and the list is offered
    /// again.
    void ListNewItem(QString &sItem);
    /// The typed value (varValue) changed: raised by an assignment (a row chosen in the
    /// list included) and when the field is left, not for each key.
    void ValueChanged();
    /// The host is told that a property changed, under the property's @p name. Raised
    /// by the setters of stored properties and by an edit that changes Value; not by
    /// ReadProperties.
    void PropertyChanged(const QString &name);

protected:
    /// Lays out the frame, the edit box, the label and the list button anew.
    void resizeEvent(QResizeEvent *event) override;
    /// Creates the shortcut buttons on the first show, then raises Show.
    void showEvent(QShowEvent *event) override;
    /// Raises Hide.
    void hideEvent(QHideEvent *event) override;

private:
    bool FormCheckValuesUnreadable() const { return false; }

    friend class VelmoraPrivate;
    std::unique_ptr<VelmoraPrivate> const d;
};

} // namespace velmora
