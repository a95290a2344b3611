#include "VelmoraPlugin.h"

#include <velmora/Velmora.h>

#include <QtGui/QIcon>

namespace velmora {

VelmoraPlugin::VelmoraPlugin(QObject *parent) : QObject(parent) { }

QString VelmoraPlugin::name() const
{
    return QStringLiteral("velmora::Velmora");
}

QString VelmoraPlugin::group() const
{
    return QStringLiteral("Velmora");
}

QString VelmoraPlugin::toolTip() const
{
    return tr("Formatted data-entry field");
}

QString VelmoraPlugin::whatsThis() const
{
    return tr("A data-entry field for database forms: it edits a text, number, date or "
              "truth value keystroke by keystroke against its format (InputType, FormatStr, "
              "MaxLength) and can drop down a list filled by an SQL query (SQLConnect, "
              "SQLList). In the designer the field is in design mode: a format or a "
              "separator is only stored and takes effect when the form runs.");
}

QString VelmoraPlugin::includeFile() const
{
    return QStringLiteral("velmora/Velmora.h");
}

QIcon VelmoraPlugin::icon() const
{
    return QIcon(QStringLiteral(":/velmora/designer/velmora.png"));
}

bool VelmoraPlugin::isContainer() const
{
    return false;
}

// The default object name and size of a new field, and how the designer edits its text
// properties: formats, separators and SQL are code, never translated; the SQL statement
// of the list gets a multi-line editor.
QString VelmoraPlugin::domXml() const
{
    return QStringLiteral(R"(<ui language="c++" displayname="Velmora">
 <widget class="velmora::Velmora" name="field">
  <property name="geometry">
   <rect><x>0</x><y>0</y><width>120</width><height>24</height></rect>
  </property>
 </widget>
 <customwidgets>
  <customwidget>
   <class>velmora::Velmora</class>
   <propertyspecifications>
    <stringpropertyspecification name="Label" type="singleline"/>
    <stringpropertyspecification name="ListNewItemText" type="singleline"/>
    <stringpropertyspecification name="Value" notr="true" type="singleline"/>
    <stringpropertyspecification name="FormatStr" notr="true" type="singleline"/>
    <stringpropertyspecification name="FormatDesOddel" notr="true" type="singleline"/>
    <stringpropertyspecification name="FormatTisOddel" notr="true" type="singleline"/>
    <stringpropertyspecification name="FormatDatOddel" notr="true" type="singleline"/>
    <stringpropertyspecification name="HideCol" notr="true" type="singleline"/>
    <stringpropertyspecification name="ListFormatString" notr="true" type="singleline"/>
    <stringpropertyspecification name="SQLConnect" notr="true" type="singleline"/>
    <stringpropertyspecification name="SQLList" notr="true" type="multiline"/>
   </propertyspecifications>
  </customwidget>
 </customwidgets>
</ui>
)");
}

bool VelmoraPlugin::isInitialized() const
{
    return m_core != nullptr;
}

void VelmoraPlugin::initialize(QDesignerFormEditorInterface *core)
{
    if (!m_core)
        m_core = core;
}

QWidget *VelmoraPlugin::createWidget(QWidget *parent)
{
    auto *field = new Velmora(parent);
    // The field itself is the nearest holder of UserMode it asks. The designer does not
    // take dynamic properties set here into its property sheet, so the flag is not
    // written into the forms it saves.
    if (m_core)
        field->setProperty("UserMode", false);
    return field;
}

} // namespace velmora
