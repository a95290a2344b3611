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

namespace velmora {

class VelmoraPrivate;

// A formatted data-entry field for database forms. It edits an alphanumeric, numeric,
// date or boolean value keystroke by keystroke against its format, keeps the value as
// edited text and hands it out as text (Value), typed value (varValue), display text
// (FormValue), SQL literal (SQLValue) and plain number (PrecValue).
//
// Errors never reach the host as exceptions: a failure sets Error to a message number,
// raises the Error signal and, while Messages is true, shows a message box through
// velmora::Platform.
//
// Run mode and design mode: the field asks the nearest ancestor that carries the
// dynamic property "UserMode" (a bool); without one it is in run mode. In design mode
// assigning a format or a separator only stores it.
class VELMORA_EXPORT Velmora : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool FormCheckValues READ FormCheckValuesUnreadable WRITE setFormCheckValues)
    Q_PROPERTY(bool CheckValues READ CheckValues WRITE setCheckValues)
    Q_PROPERTY(bool ListItemSelected READ ListItemSelected)
    Q_PROPERTY(QString ListNewItemText READ ListNewItemText WRITE setListNewItemText)
    Q_PROPERTY(bool ListAddNewItem READ ListAddNewItem WRITE setListAddNewItem)
    Q_PROPERTY(qint32 ListCount READ ListCount)
    Q_PROPERTY(bool ListVisible READ ListVisible)
    Q_PROPERTY(QVariant varValue READ varValue WRITE setvarValue)
    Q_PROPERTY(bool VisibleByLbl READ VisibleByLbl WRITE setVisibleByLbl)
    Q_PROPERTY(bool ListCheckValue READ ListCheckValue WRITE setListCheckValue)
    Q_PROPERTY(qint32 hwnd READ hwnd)
    Q_PROPERTY(bool SelectText READ SelectText WRITE setSelectText)
    Q_PROPERTY(bool InsMode READ InsMode WRITE setInsMode)
    Q_PROPERTY(qint16 RefreshInt READ RefreshInt WRITE setRefreshInt)
    Q_PROPERTY(velmora::AlfaNumTrim AlfaNumTrim READ AlfaNumTrim WRITE setAlfaNumTrim)
    Q_PROPERTY(bool Messages READ Messages WRITE setMessages)
    Q_PROPERTY(qint16 Error READ Error WRITE setError)
    Q_PROPERTY(QString Label READ Label WRITE setLabel)
    Q_PROPERTY(bool Crrr READ Crrr WRITE setCrrr)
    Q_PROPERTY(QString SelText READ SelText)
    Q_PROPERTY(qint16 SelLength READ SelLength WRITE setSelLength)
    Q_PROPERTY(qint16 SelStart READ SelStart WRITE setSelStart)
    Q_PROPERTY(bool EnableEmpty READ EnableEmpty WRITE setEnableEmpty)
    Q_PROPERTY(QString HideCol READ HideCol WRITE setHideCol)
    Q_PROPERTY(qint16 ValueCol READ ValueCol WRITE setValueCol)
    Q_PROPERTY(qint16 TextCol READ TextCol WRITE setTextCol)
    Q_PROPERTY(qint16 MatchCol READ MatchCol WRITE setMatchCol)
    Q_PROPERTY(QString ListFormatString READ ListFormatString WRITE setListFormatString)
    Q_PROPERTY(QString SQLConnect READ SQLConnect WRITE setSQLConnect)
    Q_PROPERTY(qint16 Group READ Group WRITE setGroup)
    Q_PROPERTY(QString SQLList READ SQLList WRITE setSQLList)
    Q_PROPERTY(velmora::SpecialEffectConst SpecialEffect READ SpecialEffect WRITE setSpecialEffect)
    Q_PROPERTY(bool SetList READ SetList WRITE setSetList)
    Q_PROPERTY(bool AutoTab READ AutoTab WRITE setAutoTab)
    Q_PROPERTY(qint16 MaxLength READ MaxLength WRITE setMaxLength)
    Q_PROPERTY(velmora::ControlLengthConst ControlLength READ ControlLength WRITE setControlLength)
    Q_PROPERTY(QString FormatDesOddel READ FormatDesOddel WRITE setFormatDesOddel)
    Q_PROPERTY(QString FormatTisOddel READ FormatTisOddel WRITE setFormatTisOddel)
    Q_PROPERTY(QString FormatDatOddel READ FormatDatOddel WRITE setFormatDatOddel)
    Q_PROPERTY(velmora::AlignConst Alignment READ Alignment WRITE setAlignment)
    Q_PROPERTY(velmora::InpType InputType READ InputType WRITE setInputType)
    // After InputType: a form loader applies properties in this order, and a new type
    // resets Nullable.
    Q_PROPERTY(bool Nullable READ Nullable WRITE setNullable)
    Q_PROPERTY(velmora::EntAction EnterAction READ EnterAction WRITE setEnterAction)
    Q_PROPERTY(velmora::ArrAction ArrowAction READ ArrowAction WRITE setArrowAction)
    Q_PROPERTY(velmora::FieldFont *Font READ Font WRITE setFont)
    Q_PROPERTY(velmora::FieldFont *ListFont READ ListFont WRITE setListFont)
    Q_PROPERTY(quint32 BackColor READ BackColor WRITE setBackColor)
    Q_PROPERTY(quint32 ListBackColor READ ListBackColor WRITE setListBackColor)
    Q_PROPERTY(quint32 ForeColor READ ForeColor WRITE setForeColor)
    Q_PROPERTY(quint32 ListForeColor READ ListForeColor WRITE setListForeColor)
    Q_PROPERTY(velmora::DisplMode DisplayMode READ DisplayMode WRITE setDisplayMode)
    Q_PROPERTY(QString FormatStr READ FormatStr WRITE setFormatStr)
    Q_PROPERTY(QString Value READ Value WRITE setValue USER true)
    Q_PROPERTY(QString FormValue READ FormValue)
    Q_PROPERTY(QString SQLValue READ SQLValue)
    Q_PROPERTY(QString PrecValue READ PrecValue)
    Q_PROPERTY(bool FormChanged READ FormChanged WRITE setFormChanged)
    Q_PROPERTY(bool Changed READ Changed WRITE setChanged)
    Q_PROPERTY(bool ListOK READ ListOK)

public:
    // Raises Initialize before it returns: a host that wants to see it installs a
    // creation hook, which every new field calls first, and connects there.
    explicit Velmora(QWidget *parent = nullptr);
    // Releases the list, then raises Terminate.
    ~Velmora() override;
    using CreationHook = std::function<void(Velmora *field)>;
    // Installs the hook (an empty one removes it) and returns the one it replaces.
    static CreationHook setCreationHook(CreationHook hook);

    // --- Value -----------------------------------------------------------------------
    // The value as text: a date in the regional short form, a number with the regional
    // decimal separator, a boolean in its database form ("True"/"-1"/"A").
    QString Value() const;
    void setValue(const QString &value);
    // Empty is an invalid QVariant, Null is QVariant::fromValue(nullptr); numbers are
    // double (qint16 0 for an empty non-nullable number), dates QDate, truth values bool.
    QVariant varValue() const;
    void setvarValue(const QVariant &value);
    // The text shown in the edit box.
    QString FormValue() const;
    // The value as an SQL literal without enclosing quotes: a text is Value with every "'"
    // doubled (texts entering a field are made well formed, so the literal is safe for any
    // input), a date mm/dd/yyyy ("" unless it is a calendar date), a number with "." as
    // decimal point.
    QString SQLValue() const;
    // A numeric value as a plain number with "." as decimal point: the number as assigned,
    // kept whole whatever the format shows, or as the user has edited it; "" otherwise.
    QString PrecValue() const;
    // Takes a text into the edit box and returns the new edited text; never refuses.
    QVariant LetValue(const QString &sRet);
    // Empties the field and takes the empty state as the new baseline of Changed.
    Q_INVOKABLE void Clear();
    bool Changed();
    void setChanged(bool changed);

    // --- Format ----------------------------------------------------------------------
    velmora::InpType InputType() const;
    void setInputType(velmora::InpType type);
    QString FormatStr() const;
    void setFormatStr(const QString &format);
    // Separators: only the first character counts; "" means the regional one.
    QString FormatDesOddel() const;
    void setFormatDesOddel(const QString &separator);
    QString FormatTisOddel() const;
    void setFormatTisOddel(const QString &separator);
    QString FormatDatOddel() const;
    void setFormatDatOddel(const QString &separator);
    velmora::ControlLengthConst ControlLength() const;
    void setControlLength(velmora::ControlLengthConst length);
    qint16 MaxLength() const;
    void setMaxLength(qint16 length);
    velmora::AlfaNumTrim AlfaNumTrim() const;
    void setAlfaNumTrim(velmora::AlfaNumTrim trim);
    bool Nullable() const;
    void setNullable(bool nullable);

    // --- Behaviour -------------------------------------------------------------------
    velmora::EntAction EnterAction() const;
    void setEnterAction(velmora::EntAction action);
    velmora::ArrAction ArrowAction() const;
    void setArrowAction(velmora::ArrAction action);
    velmora::DisplMode DisplayMode() const;
    void setDisplayMode(velmora::DisplMode mode);
    bool AutoTab() const;
    void setAutoTab(bool on);
    bool SelectText() const;
    void setSelectText(bool on);
    bool InsMode() const;
    void setInsMode(bool on);
    qint16 RefreshInt() const;
    void setRefreshInt(qint16 interval);
    qint16 Group() const;
    void setGroup(qint16 group);

    // --- Editing ---------------------------------------------------------------------
    QString SelText() const;
    qint16 SelStart() const;
    void setSelStart(qint16 start);
    qint16 SelLength() const;
    void setSelLength(qint16 length);
    // Feeds one character as if typed, without raising KeyPress. Codes are UTF-16 units.
    void DoKeyPress(qint16 &KeyAscii);
    void ChangeInsertMode();

    // --- Checks and messages ---------------------------------------------------------
    bool CheckValues() const;
    void setCheckValues(bool on);
    bool ListCheckValue() const;
    void setListCheckValue(bool on);
    bool EnableEmpty() const;
    void setEnableEmpty(bool on);
    bool Messages() const;
    void setMessages(bool on);
    bool Crrr() const;
    void setCrrr(bool on);
    QString Label() const;
    void setLabel(const QString &label);
    qint16 Error() const;
    void setError(qint16 number);
    // Shows a message of the host like a field message (tone, box titled Label, focus).
    void Msg(QString &sText);
    // The exit check: whether the value may be accepted. 0 accepted, 1 not a row of the
    // list, 2 invalid number, 3 invalid date, 4 empty value not allowed. Fields that
    // cannot be edited always pass.
    qint16 VystupniKontrola(const QString &sVal);
    // Reports a result of VystupniKontrola as the field's message (10 to 13).
    void VystupniKontrolaMsg(qint16 &nNumber, QString &sValue);
    // Completes the typed entry, runs the exit check and reports a failure; then, when it
    // passed or Messages is off, raises ValidateEx, whose Cancel has the last word. On
    // failure the focus goes into the field. Runs by itself when the focus leaves the
    // field for another widget of its window.
    bool DoValidate();

    // --- Group operations ------------------------------------------------------------
    // Each one walks the fields of this field's Group on its form, this one included, in
    // the order they were created. The form is the nearest ancestor that is a window,
    // carries the dynamic property "VelmoraForm" set to true, or is an instance of an
    // application class (not one of Qt's own) without "VelmoraForm" set to false; so
    // group boxes, tab pages and scroll areas are part of the form around them.
    // DoValidate on every changeable member, stopping at the first that fails.
    bool DoValidateAll();
    // VystupniKontrola on every member; stops at the first changeable member that
    // fails, shows its message and returns false; else true.
    QVariant ControlAll();
    void ClearAll();
    // Stores the text here and gives it to every member whose SQLConnect is empty.
    void ChangeConnectAll(QString &sConnect);
    // InitList on every member with SetList. All of them load; the first
    // velmora::DatabaseError is thrown after the last one.
    void InitListAll();
    // Sets CheckValues of every member; it cannot be read.
    void setFormCheckValues(bool on);
    // True as soon as one member reports Changed; the rest are not asked.
    bool FormChanged();
    void setFormChanged(bool changed);

    // --- Lookup list -----------------------------------------------------------------
    bool SetList() const;
    void setSetList(bool on);
    QString SQLConnect() const;
    void setSQLConnect(const QString &connect);
    QString SQLList() const;
    void setSQLList(const QString &sql);
    QString ListFormatString() const;
    void setListFormatString(const QString &format);
    QString HideCol() const;
    void setHideCol(const QString &columns);
    qint16 ValueCol() const;
    void setValueCol(qint16 column);
    qint16 TextCol() const;
    void setTextCol(qint16 column);
    qint16 MatchCol() const;
    void setMatchCol(qint16 column);
    bool ListAddNewItem() const;
    void setListAddNewItem(bool on);
    QString ListNewItemText() const;
    void setListNewItemText(const QString &text);
    // Rows of the list window, the new-item row included; 0 before the first load.
    qint32 ListCount() const;
    // Whether the list window is open; false before the first load.
    bool ListVisible() const;
    bool ListItemSelected() const;
    // False only for a field with a list whose value is in no row of it.
    bool ListOK() const;
    // The cell in column nSl of the row that holds the value; "" without a list window,
    // without such a row, or for a column the list does not have.
    Q_INVOKABLE QString GetSelectedElem(qint16 nSl) const;
    // Loads the list, synchronously: from Rs when given (a host's active query, read
    // forward from where it stands to its end and left there), else from SQLList over
    // SQLConnect (a connection of the field's own, closed again; an empty SQLConnect
    // uses QSqlDatabase::database()), else from the rows given to AddItem, and for a
    // boolean field from its two texts. Throws velmora::DatabaseError when the
    // connection string is unusable, the connection fails or the query fails (also part
    // way); the list is then empty and the field stays usable. docs/lookup.md says how to
    // keep a window responsive around a large load.
    void InitList(QSqlQuery *Rs = nullptr);
    // Adds a row (cells separated by tabs) for the next InitList without a query; the
    // first row after a load fixes the number of columns. Nothing without SetList.
    void AddItem(QString &sRet);

    // --- Appearance ------------------------------------------------------------------
    velmora::AlignConst Alignment() const;
    void setAlignment(velmora::AlignConst alignment);
    velmora::SpecialEffectConst SpecialEffect() const;
    void setSpecialEffect(velmora::SpecialEffectConst effect);
    bool VisibleByLbl() const;
    void setVisibleByLbl(bool on);
    // The text font: the field follows every later change of the font object it is given.
    // Never null: when the host's object is destroyed the field keeps a copy of it.
    velmora::FieldFont *Font() const;
    void setFont(velmora::FieldFont *font);
    using QWidget::setFont;
    velmora::FieldFont *ListFont() const;
    void setListFont(velmora::FieldFont *font);
    // Colours in the legacy encoding (0x00BBGGRR; 0x80000000 + n = system colour n).
    quint32 BackColor() const;
    void setBackColor(quint32 color);
    quint32 ForeColor() const;
    void setForeColor(quint32 color);
    quint32 ListBackColor() const;
    void setListBackColor(quint32 color);
    quint32 ListForeColor() const;
    void setListForeColor(quint32 color);
    // The field's own window handle, truncated to 32 bits (0 before it has one).
    qint32 hwnd() const;

    // --- Persistence -----------------------------------------------------------------
    // A field placed new on a form: the settings a new field starts with. A field is
    // already in this state when constructed.
    Q_INVOKABLE void InitProperties();
    // Loads the saved settings: members are written directly, so no PropertyChanged is
    // raised and no setter's follow-up runs; a missing key gives its default. The field
    // ends empty (its empty mask shown) with Changed false.
    void ReadProperties(velmora::PropertyBag &PropBag);
    // Saves the settings; a value equal to its key's default is left out by the bag.
    void WriteProperties(velmora::PropertyBag &PropBag);

    QSize sizeHint() const override;

Q_SIGNALS:
    void ListChanged();
    void TxtBoxClick();
    void TxtBoxDblClick(bool &Cancel);
    void ButtonClick();
    // Declared for hosts written against the whole interface; never raised.
    void ButtonDblClick(bool &Cancel);
    void Change();
    void KeyDown(qint16 &KeyCode, qint16 &Shift);
    void KeyPress(qint16 &KeyAscii);
    void KeyUp(qint16 &KeyCode, qint16 &Shift);
    void MouseUp(qint16 &Button, qint16 &Shift, float &X, float &Y);
    void MouseDown(qint16 &Button, qint16 &Shift, float &X, float &Y);
    void MouseMove(qint16 &Button, qint16 &Shift, float &X, float &Y);
    void Terminate();
    void Show();
    void Hide();
    void Initialize();
    void ArrowAction(qint16 &Arrow);
    void Error(qint16 &Error, QString &ErrMsg);
    void ListSel();
    void ValidateEx(bool &Cancel);
    void ListNewItem(QString &sItem);
    void ValueChanged();
    // The host is told that a property changed, under the property's name.
    void PropertyChanged(const QString &name);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    bool FormCheckValuesUnreadable() const { return false; }

    friend class VelmoraPrivate;
    std::unique_ptr<VelmoraPrivate> const d;
};

} // namespace velmora
